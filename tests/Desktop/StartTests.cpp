#include "Desktop/DesktopStory.h"

#include "support/Waiting.h"

#include <algorithm>

namespace velmorquit {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using Start = DesktopStory;

TEST_F(Start, WithoutADisplayIsALineAndAStatus) {
    for (const char* display : {"--unset=DISPLAY", "DISPLAY=:4711"}) {
        const Outcome answer = run({"env", display, VELMORQUIT});
        EXPECT_EQ(answer.status, 1) << answer.text;
        EXPECT_THAT(answer.text, StartsWith("Velmor Quit: ")) << display;
        EXPECT_THAT(answer.text, HasSubstr("DISPLAY")) << display;
        EXPECT_EQ(std::ranges::count(answer.text, '\n'), 1) << answer.text;
    }
}

TEST_F(Start, ASecondTimeLeavesTheFirstAlone) {
    startProgram();
    openRude({"--ignore"});
    const auto quitAll = beginQuitAll();
    const Outcome second = run({VELMORQUIT});
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.text, "Velmor Quit: è già in esecuzione\n");
    EXPECT_TRUE(program->isRunning());
    EXPECT_EQ(phase(), "quitting");
    EXPECT_TRUE(quitAll->isRunning());
}

/// The icon in the tray.
class TrayIcon : public DesktopStory {
protected:
    static std::string windowsNamed(const std::string& windowClass) {
        return run({"xdotool", "search", "--onlyvisible", "--class", "^" + windowClass + "$"}).text;
    }

    /// Waits until the panel has taken the icon in.
    void awaitIcon() {
        await("the icon in the panel", [this] {
            std::string panel = windowsNamed("tint2");
            panel.resize(std::min(panel.find('\n'), panel.size()));
            icon_ = windowsNamed("velmorquit");
            icon_.resize(std::min(icon_.find('\n'), icon_.size()));
            const std::string inside = run({"xwininfo", "-tree", "-id", panel}).text;
            return !icon_.empty() && inside.find("\"velmorquit\"") != std::string::npos;
        });
    }

    /// Opens the menu of the icon and moves through it with the keyboard.
    void choose(const std::string& key) {
        await("the menu", [this] {
            run({"xdotool", "mousemove", "--window", icon_, "8", "8", "click", "3"});
            return waitUntil([this] { return windowsNamed("velmorquit") != icon_ + '\n'; }, 3000);
        });
        run({"xdotool", "key", key, "Return"});
    }

private:
    std::string icon_;
};

TEST_F(TrayIcon, HasAMenuThatQuitsAllAndOneThatEndsTheProgram) {
    startProgram();
    Child& application = openRude();
    awaitIcon();
    choose("Down");
    await("the end of the application", [&] { return !application.isRunning(); });
    EXPECT_THAT(application.output(), HasSubstr("asked"));
    await("the end of the run", [] { return phase() != "quitting"; });

    choose("Up");
    await("the end of the program", [this] { return !program->isRunning(); });
    EXPECT_EQ(outcomeOf(*program).status, 0) << program->output();
}

// Nothing else reaches the program then.
TEST_F(TrayIcon, IsEnoughWithoutASessionBus) {
    program = std::make_unique<Child>(
        std::vector<std::string>{"env", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere", VELMORQUIT});
    awaitIcon();
    EXPECT_THAT(program->output(), StartsWith("Velmor Quit: nessun bus di sessione"));
    Child application({RUDE_CLIENT});
    await("the application", [&] { return !application.output().empty(); });
    await("the end of the application", [&] {
        choose("Down");
        return waitUntil([&] { return !application.isRunning(); }, 3000);
    });
    EXPECT_TRUE(program->isRunning());
}

} // namespace
} // namespace velmorquit
