#pragma once

#include "Platform/Value.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/Child.h"
#include "support/TemporaryFolder.h"

namespace velmorquit {

namespace fs = std::filesystem;

/// A user of a computer with disks, all in a folder that goes with the test, who backs up with the
/// real restic.
class BackupStory : public testing::Test {
protected:
    BackupStory();

    struct End {
        int status = -1;
        std::string output; ///< and errors

        [[nodiscard]] std::string lastLine() const;
    };

    /// Runs the tool to its end.
    End tool(const std::vector<std::string>& words);
    std::unique_ptr<Child> start(const std::vector<std::string>& words);
    static End wait(Child& child);
    /// Runs restic itself on a destination of the user's.
    End restic(const fs::path& place, std::vector<std::string> words);
    /// Sets it up, with the home folder as what is backed up.
    void setUp(const fs::path& place, const std::vector<std::string>& options = {});

    /// From now on restic writes no more than that in a second.
    void limit(int kilobytes);
    void write(const fs::path& file, std::string_view content);
    void writeRandom(const fs::path& file, std::size_t size);
    /// All names that a file can have, and all that a name can be.
    void makeMixedFiles();

    /// What `status -X` says.
    struct Progress {
        bool isRunning = false;
        double percent = -1;
    };
    Progress progress();
    /// Waits until it is as far as that.
    bool comesTo(double percent);

    Value::Dictionary destination(std::size_t index = 0) const;
    std::string passwordFile() const;
    std::vector<WallTime> dates(std::size_t index = 0) const;
    std::size_t locksIn(const fs::path& place) const;

    const TemporaryFolder folder{"velmor-backup."};
    const fs::path& root = folder.path();
    const fs::path home = root / "home";
    const fs::path settings = root / "config/velmorquit/backups.plist";
};

} // namespace velmorquit
