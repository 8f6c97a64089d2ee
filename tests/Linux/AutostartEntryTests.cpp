#include "Linux/Autostart/AutostartEntry.h"
#include "support/Child.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;

class AutostartEntryTest : public testing::Test {
protected:
    AutostartEntryTest() {
        program = root_ / "a è; & #~*(<>)|?{x}[y]@!^";
        std::ofstream(program) << "#!/bin/sh\n";
        fs::permissions(program, fs::perms::owner_all);
        fs::create_directories(root_ / "system");
    }

    AutostartEntry entry() {
        return {{root_ / "own", {root_ / "none", root_ / "system"}}, program};
    }

    static void write(const fs::path& file, const std::string& lines) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << "[Desktop Entry]\nType=Application\nName=x\n" << lines;
    }

    [[nodiscard]] fs::path own() const { return root_ / "own" / fileName; }
    [[nodiscard]] fs::path system() const { return root_ / "system" / fileName; }

    [[nodiscard]] const fs::path& root() const { return root_; }

    fs::path program;

private:
    static constexpr const char* fileName = "org.velmorquit.VelmorQuit.desktop";
    const TemporaryFolder folder_;
    const fs::path& root_ = folder_.path();
};

TEST_F(AutostartEntryTest, IsWrittenAndDeletedWhateverThePathHolds) {
    EXPECT_EQ(entry().status(), LoginItemStatus::notRegistered);
    EXPECT_FALSE(entry().remove());
    EXPECT_FALSE(entry().add());
    EXPECT_EQ(entry().status(), LoginItemStatus::enabled);
    EXPECT_FALSE(fs::exists(own().string() + ".new"));
    fs::remove(program);
    EXPECT_EQ(entry().status(), LoginItemStatus::notFound);
    EXPECT_FALSE(entry().remove());
    EXPECT_FALSE(fs::exists(own()));
    EXPECT_EQ(entry().status(), LoginItemStatus::notRegistered);
}

TEST_F(AutostartEntryTest, HidesTheSystemsEntryByOneOfTheUsersOwn) {
    write(system(), "Exec=true\n");
    EXPECT_EQ(entry().status(), LoginItemStatus::enabled);
    EXPECT_FALSE(entry().remove());
    EXPECT_TRUE(fs::exists(own()));
    EXPECT_EQ(entry().status(), LoginItemStatus::notRegistered);
    EXPECT_FALSE(entry().add());
    EXPECT_EQ(entry().status(), LoginItemStatus::enabled);
}

TEST_F(AutostartEntryTest, ReadsWhatOthersHaveWritten) {
    const std::pair<const char*, LoginItemStatus> entries[] = {
        {"Exec=true\n", LoginItemStatus::enabled},
        {"Exec=true\nHidden=true\n", LoginItemStatus::notRegistered},
        {"Exec=true\nX-GNOME-Autostart-enabled=false\n", LoginItemStatus::notRegistered},
        {"Exec=true\nX-GNOME-Autostart-enabled=true\n", LoginItemStatus::enabled},
        {"Exec=true\nTryExec=/nonexistent/x\n", LoginItemStatus::notFound},
        {"Exec=/nonexistent/x\n", LoginItemStatus::notFound},
        {"Exec=\"unfinished\n", LoginItemStatus::notFound},
        {"", LoginItemStatus::notFound},
    };
    for (const auto& [lines, status] : entries) {
        write(own(), lines);
        EXPECT_EQ(entry().status(), status) << lines;
    }
    std::ofstream(own(), std::ios::trunc) << "\x01 not an entry";
    EXPECT_EQ(entry().status(), LoginItemStatus::unknown);
}

// The reader that a session under systemd has.
TEST_F(AutostartEntryTest, IsReadByASessionAsItWasMeant) {
    constexpr const char* reader = "/lib/systemd/user-generators/systemd-xdg-autostart-generator";
    if (!fs::exists(reader))
        GTEST_SKIP() << "there is no " << reader;
    const fs::path folder = root() / "units";
    fs::create_directories(folder);
    const auto started = [&] {
        fs::remove_all(folder);
        fs::create_directories(folder);
        Child child({"env", "-i", "XDG_CONFIG_HOME=" + root().string(),
                     "XDG_CONFIG_DIRS=/nonexistent", "HOME=" + root().string(), reader, folder,
                     folder, folder});
        EXPECT_TRUE(waitUntil([&] { return !child.isRunning(); }));
        EXPECT_EQ(child.status(), 0) << child.output();
        std::ifstream unit(folder / "app-org.velmorquit.VelmorQuit@autostart.service");
        std::string line;
        while (std::getline(unit, line) && !line.starts_with("ExecStart=")) {
        }
        return line;
    };
    AutostartEntry entry({root() / "autostart", {root() / "system"}}, program);
    EXPECT_EQ(started(), "");
    ASSERT_FALSE(entry.add());
    // The colon: nothing in the line is a variable.
    EXPECT_EQ(started(), "ExecStart=:\"" + program.string() + '"');
    ASSERT_FALSE(entry.remove());
    EXPECT_EQ(started(), "");
    write(system(), "Exec=true\n");
    ASSERT_FALSE(entry.remove());
    ASSERT_TRUE(fs::exists(root() / "autostart" / own().filename()));
    EXPECT_EQ(started(), "");
}

TEST_F(AutostartEntryTest, RefusesAPathThatNotEverySessionUnderstands) {
    for (const char* name :
         {"/a\\b", "/100%", "/$c", "/'d'", "/\"e", "/`f`", "/a\nb", "/\xff", ""}) {
        AutostartEntry entry({root() / "own", {}}, name);
        EXPECT_TRUE(entry.add()) << name;
        EXPECT_EQ(entry.status(), LoginItemStatus::notRegistered) << name;
    }
}

TEST_F(AutostartEntryTest, SaysWhyItCouldNotBeWritten) {
    fs::create_directories(own().parent_path().parent_path());
    std::ofstream(own().parent_path()) << "a file in the folder's place";
    EXPECT_TRUE(entry().add());
    EXPECT_EQ(entry().status(), LoginItemStatus::notRegistered);
}

} // namespace
} // namespace velmorquit
