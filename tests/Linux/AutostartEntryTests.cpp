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
    AutostartEntry entry() { return {{root / "own", {root / "none", root / "system"}}, program}; }
    void write(const fs::path& file, const std::string& lines) const {
        folder.write(file, "[Desktop Entry]\nType=Application\nName=x\n" + lines);
    }

    const fs::path fileName = "org.velmorquit.VelmorQuit.desktop";
    const TemporaryFolder folder;
    const fs::path& root = folder.path();
    const fs::path program = folder.writeProgram("a è; & #~*(<>)|?{x}[y]@!^");
    const fs::path own = root / "own" / fileName;
    const fs::path system = root / "system" / fileName;
};

TEST_F(AutostartEntryTest, IsWrittenAndDeletedWhateverThePathHolds) {
    EXPECT_EQ(entry().status(), LoginItemStatus::notRegistered);
    EXPECT_FALSE(entry().remove());
    EXPECT_FALSE(entry().add());
    EXPECT_EQ(entry().status(), LoginItemStatus::enabled);
    EXPECT_FALSE(fs::exists(own.string() + ".new"));
    fs::remove(program);
    EXPECT_EQ(entry().status(), LoginItemStatus::notFound);
    EXPECT_FALSE(entry().remove());
    EXPECT_FALSE(fs::exists(own));

    // The system's entry is hidden by one of the user's own.
    folder.writeProgram(program);
    write(system, "Exec=true\n");
    EXPECT_EQ(entry().status(), LoginItemStatus::enabled);
    EXPECT_FALSE(entry().remove());
    EXPECT_TRUE(fs::exists(own));
    EXPECT_EQ(entry().status(), LoginItemStatus::notRegistered);
}

TEST_F(AutostartEntryTest, ReadsWhatOthersHaveWritten) {
    const std::pair<const char*, LoginItemStatus> entries[] = {
        {"Exec=true\n", LoginItemStatus::enabled},
        {"Exec=true\nHidden=true\n", LoginItemStatus::notRegistered},
        {"Exec=true\nX-GNOME-Autostart-enabled=false\n", LoginItemStatus::notRegistered},
        {"Exec=true\nTryExec=/nonexistent/x\n", LoginItemStatus::notFound},
        {"Exec=/nonexistent/x\n", LoginItemStatus::notFound},
        {"Exec=\"unfinished\n", LoginItemStatus::notFound},
        {"", LoginItemStatus::notFound},
    };
    for (const auto& [lines, status] : entries) {
        write(own, lines);
        EXPECT_EQ(entry().status(), status) << lines;
    }
    folder.write(own, "\x01 not an entry");
    EXPECT_EQ(entry().status(), LoginItemStatus::unknown);
}

// The reader that a session under systemd has.
TEST_F(AutostartEntryTest, IsReadByASessionAsItWasMeant) {
    constexpr const char* reader = "/lib/systemd/user-generators/systemd-xdg-autostart-generator";
    if (!fs::exists(reader))
        GTEST_SKIP() << "there is no " << reader;
    const fs::path units = root / "units";
    const auto started = [&] {
        fs::remove_all(units);
        fs::create_directories(units);
        Child child({"env", "-i", "XDG_CONFIG_HOME=" + root.string(),
                     "XDG_CONFIG_DIRS=/nonexistent", "HOME=" + root.string(), reader, units, units,
                     units});
        EXPECT_TRUE(waitUntil([&] { return !child.isRunning(); }));
        EXPECT_EQ(child.status(), 0) << child.output();
        std::ifstream unit(units / "app-org.velmorquit.VelmorQuit@autostart.service");
        std::string line;
        while (std::getline(unit, line) && !line.starts_with("ExecStart=")) {
        }
        return line;
    };
    AutostartEntry entry({root / "autostart", {root / "system"}}, program);
    EXPECT_EQ(started(), "");
    ASSERT_FALSE(entry.add());
    // The colon: nothing in the line is a variable.
    EXPECT_EQ(started(), "ExecStart=:\"" + program.string() + '"');
    ASSERT_FALSE(entry.remove());
    write(system, "Exec=true\n");
    ASSERT_FALSE(entry.remove());
    EXPECT_EQ(started(), "");
}

TEST_F(AutostartEntryTest, RefusesAPathThatNotEverySessionUnderstandsAndSaysWhatFails) {
    for (const char* name :
         {"/a\\b", "/100%", "/$c", "/'d'", "/\"e", "/`f`", "/a\nb", "/\xff", ""}) {
        AutostartEntry entry({root / "own", {}}, name);
        EXPECT_TRUE(entry.add()) << name;
        EXPECT_EQ(entry.status(), LoginItemStatus::notRegistered) << name;
    }
    folder.write("own", "a file in the folder's place");
    EXPECT_TRUE(entry().add());
    EXPECT_EQ(entry().status(), LoginItemStatus::notRegistered);
}

} // namespace
} // namespace velmorquit
