#pragma once

#include "Platform/Value.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/Outcome.h"
#include "support/TemporaryFolder.h"

namespace velmorquit {

namespace fs = std::filesystem;
std::string lastLineOf(const std::string& text);

inline auto succeeds() { return ends(0, testing::_); }
template <class Text> auto isRefusedWith(const Text& part) {
    return ends(1, testing::ResultOf("last line", lastLineOf, testing::HasSubstr(part)));
}

/// A user of a computer with disks, all in a folder that goes with the test, who backs up with the
/// real restic.
class BackupStory : public testing::Test {
protected:
    BackupStory();

    /// Runs the tool to its end.
    static Outcome tool(const Words& words) { return outcomeOf(*start(words)); }
    static Outcome backUp() { return tool({"startbackup", "--block"}); }
    static std::unique_ptr<Child> start(Words words);
    /// Sets it up, with the home folder as what is backed up.
    void setUp(const fs::path& place, const Words& options = {});

    /// From now on restic writes no more than that in a second.
    void limit(int kilobytes);
    static void writeRandom(const fs::path& file, std::size_t size);
    /// All names that a file can have, and all that a name can be.
    void makeMixedFiles();

    /// The answer to `status -X`.
    struct Progress {
        bool isRunning = false;
        double percent = -1;
    };
    static Progress progress();
    /// Waits until it is as far as that.
    static bool comesTo(double percent);

    Value::Dictionary destination(std::size_t index = 0) const;
    std::string passwordFile() const;
    std::vector<WallTime> dates(std::size_t index = 0) const;
    static std::size_t locksIn(const fs::path& place);

    const TemporaryFolder folder{"velmor-backup."};
    const fs::path& root = folder.path();
    const fs::path home = root / "home";
    const fs::path settings = root / "config/velmorquit/backups.plist";
};

} // namespace velmorquit
