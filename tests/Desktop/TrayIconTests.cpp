#include "Desktop/DesktopStory.h"

namespace velmorquit {
namespace {

/// The icon in the tray.
class TrayIcon : public DesktopStory {
protected:
    static Words ownWindows() { return windows("--class", "velmorquit"); }

    /// Waits until the panel of the desktop has taken the icon in.
    void awaitIcon() {
        await("the icon in the panel", [this] {
            const Words panel = windows("--class", "tint2");
            // Without one it would wait for somebody to click on a window.
            if (panel.empty())
                return false;
            // An open panel of the program's is a window of the same class.
            const std::string inside = run({"xwininfo", "-tree", "-id", panel.front()}).text;
            const auto name = inside.find(" \"velmorquit\"");
            if (name == inside.npos)
                return false;
            icon = std::to_string(std::stoul(inside.substr(inside.rfind("0x", name)), nullptr, 0));
            return true;
        });
    }
    void click(const std::string& button = "1") const {
        run({"xdotool", "mousemove", "--window", icon, "8", "8", "click", button});
    }
    /// Chooses from the menu of the icon, with that key, until the process has ended.
    void choose(const std::string& key, Child& process) {
        await("what was chosen", [&] {
            const Words before = ownWindows();
            click("3");
            if (waitUntil([&] { return ownWindows() != before; }, 3000))
                press({key, "Return"});
            return waitUntil([&] { return !process.isRunning(); }, 3000);
        });
    }

    std::string icon;
};

// Nothing else reaches the program then.
TEST_F(TrayIcon, HasAMenuAndIsEnoughWithoutASessionBus) {
    Child& application = openRude();
    program = std::make_unique<Child>(
        Words{"env", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere", VELMORQUIT});
    awaitIcon();
    EXPECT_THAT(program->output(), StartsWith("Velmor Quit: nessun bus di sessione"));
    choose("Down", application);
    EXPECT_THAT(application.output(), HasSubstr("asked"));
    awaitPanel();
    choose("Up", *program);
    EXPECT_EQ(program->status(), 0) << program->output();
}

TEST_F(TrayIcon, OpensThePanelAndClosesItAgainAndItsMenuWithControl) {
    startProgram();
    awaitIcon();
    EXPECT_FALSE(isPanelShown());
    click();
    awaitPanel();
    click();
    awaitPanel(false);
    const auto awaitShadow = [this] {
        await("the panel with the room for its shadow", [] {
            const Words panel = windows("--name", "Velmor Quit");
            return !panel.empty() && run({"xdotool", "getwindowgeometry", panel.front()})
                                             .text.find("Geometry: 480x") != std::string::npos;
        });
        linger(500); // until it has been drawn
        awaitIcon(); // the panel of the tray takes it in anew when a compositor comes
    };
    click();
    awaitPanel();
    const Child compositor({"picom", "--backend", "xrender", "--config", "/dev/null"});
    awaitShadow();
    press({"Escape"});
    awaitPanel(false);
    // The icon lies within the room for the shadow, which the window manager's frame must not keep:
    // now there is a compositor before the window manager has the window.
    await("the panel", [this] { // a click is lost on an icon that is just being taken in anew
        click();
        return waitUntil([] { return isPanelShown(); }, 3000);
    });
    awaitShadow();
    click();
    awaitPanel(false);
    click();
    awaitPanel();
    clickAt(20, 700);
    awaitPanel(false);
    run({"xdotool", "keydown", "ctrl"});
    click();
    run({"xdotool", "keyup", "ctrl"});
    await("the menu", [this] { return ownWindows() != Words{icon}; });
    EXPECT_FALSE(isPanelShown());
    press({"ctrl+q"});
    awaitEnd(*program);
}

} // namespace
} // namespace velmorquit
