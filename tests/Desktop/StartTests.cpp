#include "Desktop/DesktopStory.h"

#include "support/StandInWatcher.h"
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

TEST_F(Start, ASecondTimeDoesNotWaitForAFirstOneThatHangs) {
    startProgram();
    program->send(SIGSTOP);
    const Outcome second = run({VELMORQUIT});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.text, "Velmor Quit: è già in esecuzione, ma non risponde\n");
    const Outcome shown = control({"show"});
    EXPECT_EQ(shown.status, 1);
    EXPECT_EQ(shown.text, "velmorctl: Velmor Quit non risponde.\n");
    program->send(SIGCONT);
    EXPECT_EQ(phase(), "idle");
}

// The bus tells that the first one has gone before it answered.
TEST_F(Start, ASecondTimeTakesThePlaceOfAFirstOneThatEndsMeanwhile) {
    startProgram();
    program->send(SIGSTOP);
    auto second = std::make_unique<Child>(std::vector<std::string>{VELMORQUIT});
    linger(500);
    EXPECT_TRUE(second->isRunning());
    program = std::move(second);
    await("an answer of the second one", [] { return control({"status"}).status == 0; });
    EXPECT_TRUE(program->isRunning()) << program->output();
}

TEST_F(Start, TheSwitchesForTheSessionNeedNeitherDisplayNorBus) {
    const auto entry = preferencesFile().parent_path().parent_path() / "autostart" /
                       "org.velmorquit.VelmorQuit.desktop";
    const auto velmorquit = [](const std::vector<std::string>& switches) {
        std::vector<std::string> command{"env", "--unset=DISPLAY",
                                         "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere", VELMORQUIT};
        command.insert(command.end(), switches.begin(), switches.end());
        return run(command);
    };
    const Outcome on = velmorquit({"--disable-launch-at-login", "--enable-launch-at-login"});
    EXPECT_EQ(on.status, 0);
    EXPECT_EQ(on.text, "Avvio automatico: attivo\n");
    EXPECT_THAT(contents(entry), HasSubstr("Exec=\"" VELMORQUIT "\"\n"));
    const Outcome off = velmorquit({"--disable-launch-at-login"});
    EXPECT_EQ(off.status, 0);
    EXPECT_EQ(off.text, "Avvio automatico: disattivo\n");
    EXPECT_FALSE(std::filesystem::exists(entry));

    std::filesystem::remove_all(entry.parent_path());
    write(entry.parent_path(), "a file in the folder's place");
    const Outcome failed = velmorquit({"--enable-launch-at-login"});
    EXPECT_EQ(failed.status, 0);
    EXPECT_THAT(failed.text, StartsWith("Velmor Quit: avvio automatico non modificato: "));
    EXPECT_THAT(failed.text, testing::EndsWith("\nAvvio automatico: disattivo\n"));
}

TEST_F(Start, SaysHowItIsUsedWithoutADisplayAndNamesWhatNobodyUnderstands) {
    const auto alone = [](const char* program, const char* word) {
        const std::string quiet = std::string(program) + ' ' + word + " 2>/dev/null";
        return run({"env", "--unset=DISPLAY", "LC_ALL=en_GB.UTF-8",
                    "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere", "sh", "-c", quiet});
    };
    for (const char* program : {VELMORQUIT, VELMORCTL}) {
        const Outcome help = alone(program, "--help");
        EXPECT_EQ(help.status, 0);
        EXPECT_THAT(help.text, StartsWith("Usage: "));
        const Outcome version = alone(program, "--version");
        EXPECT_EQ(version.status, 0);
        EXPECT_THAT(version.text, testing::MatchesRegex("velmor[a-z]+ [0-9.]+\n"));
    }
    startProgram();
    const Outcome second =
        run({VELMORQUIT, "-style", "fusion", "-session", "a_b", "--foo", "-name", "x"});
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.text, "Velmor Quit: argomento sconosciuto, lo ignoro: --foo "
                           "(velmorquit --help)\nVelmor Quit: è già in esecuzione\n");
}

TEST_F(Start, LaunchersReachItByTheirOwnInterface) {
    startProgram();
    const auto call = [](const std::string& method, const std::vector<std::string>& arguments) {
        std::vector<std::string> command{"gdbus",
                                         "call",
                                         "--session",
                                         "--dest",
                                         "org.velmorquit.VelmorQuit",
                                         "--object-path",
                                         "/org/velmorquit/VelmorQuit",
                                         "--method",
                                         "org.freedesktop.Application." + method};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return run(command);
    };
    EXPECT_EQ(call("Activate", {"{'activation-token': <'x'>}"}).text, "()\n");
    EXPECT_EQ(call("Open", {"['file:///etc/passwd']", "{}"}).text, "()\n");
    const Outcome action = call("ActivateAction", {"quitAll", "[]", "{}"});
    EXPECT_EQ(action.status, 1);
    EXPECT_THAT(action.text, HasSubstr("Azione sconosciuta: quitAll"));
    EXPECT_EQ(phase(), "idle");
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
            // Without one it would wait for somebody to click on a window.
            if (panel.empty())
                return false;
            icon_ = windowsNamed("velmorquit");
            icon_.resize(std::min(icon_.find('\n'), icon_.size()));
            const std::string inside = run({"xwininfo", "-tree", "-id", panel}).text;
            return !icon_.empty() && inside.find("\"velmorquit\"") != std::string::npos;
        });
    }

    void click(const std::string& button) const {
        run({"xdotool", "mousemove", "--window", icon_, "8", "8", "click", button});
    }
    static bool isPanelShown() {
        return run({"xdotool", "search", "--onlyvisible", "--name", "^Velmor Quit$"}).status == 0;
    }

    /// Opens the menu of the icon and moves through it with the keyboard.
    void choose(const std::string& key) {
        const std::string before = windowsNamed("velmorquit");
        await("the menu", [&] {
            click("3");
            return waitUntil([&] { return windowsNamed("velmorquit") != before; }, 3000);
        });
        run({"xdotool", "key", key, "Return"});
    }

    [[nodiscard]] const std::string& icon() const { return icon_; }

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
    await("the panel", isPanelShown);

    choose("Up");
    await("the end of the program", [this] { return !program->isRunning(); });
    EXPECT_EQ(outcomeOf(*program).status, 0) << program->output();
}

TEST_F(TrayIcon, OpensThePanelAndClosesItAgainAndItsMenuWithControl) {
    startProgram();
    awaitIcon();
    EXPECT_FALSE(isPanelShown());
    click("1");
    await("the panel", isPanelShown);
    click("1");
    await("the end of the panel", [] { return !isPanelShown(); });
    // The icon lies within the room for the shadow, which the window manager's frame must not keep.
    const Child compositor({"picom", "--backend", "xrender", "--config", "/dev/null"});
    const auto openWithShadow = [this] {
        click("1");
        await("the panel with the room for its shadow", [] {
            const Outcome panel =
                run({"sh", "-c",
                     "xdotool search --onlyvisible --name '^Velmor Quit$' getwindowgeometry"});
            return panel.text.find("Geometry: 456x") != std::string::npos;
        });
        linger(500); // until it has been drawn
        awaitIcon(); // the panel of the tray takes it in anew when a compositor comes
    };
    // The second time there is a compositor before the window manager has the window.
    openWithShadow();
    run({"xdotool", "key", "Escape"});
    await("the end of the panel by a key", [] { return !isPanelShown(); });
    openWithShadow();
    click("1");
    await("the end of the panel below its shadow", [] { return !isPanelShown(); });
    click("1");
    await("the panel", isPanelShown);
    run({"xdotool", "mousemove", "20", "700", "click", "1"});
    await("the end of the panel by a press elsewhere", [] { return !isPanelShown(); });
    run({"xdotool", "keydown", "ctrl"});
    click("1");
    run({"xdotool", "keyup", "ctrl"});
    await("the menu", [this] { return windowsNamed("velmorquit") != icon() + '\n'; });
    EXPECT_FALSE(isPanelShown());
    run({"xdotool", "key", "ctrl+q"});
    await("the end of the program", [this] { return !program->isRunning(); });
}

TEST_F(TrayIcon, ThePanelOpensByItselfTheFirstTimeAndWhenTheProgramIsStartedAgain) {
    std::filesystem::remove(preferencesFile());
    startProgram();
    await("the panel", isPanelShown);
    killProgram();
    startProgram();
    linger(1000);
    EXPECT_FALSE(isPanelShown());
    EXPECT_EQ(run({VELMORQUIT}).status, 0);
    await("the panel", isPanelShown);
}

TEST_F(TrayIcon, IsNotNeededForThePanelAndComesBackWithTheTray) {
    startProgram();
    awaitIcon();
    run({"sh", "-c", "kill $(xdotool search --onlyvisible --class '^tint2$' getwindowpid)"});
    await("the end of the tray", [] { return windowsNamed("tint2").empty(); });
    EXPECT_EQ(control({"show"}).status, 0);
    await("the panel", isPanelShown);
    run({"xdotool", "key", "Escape"});
    await("the end of the panel", [] { return !isPanelShown(); });
    const Child tray({"tint2", "-c", home().parent_path() / "tint2rc"});
    await("another tray", [] { return !windowsNamed("tint2").empty(); });
    awaitIcon();
    click("1");
    await("the panel", isPanelShown);
}

TEST_F(TrayIcon, FollowsAHostOfTheOtherKindAndBack) {
    startProgram();
    awaitIcon();
    StandInWatcher watcher(
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, "stand-in watcher"));
    watcher.appear();
    await("the icon on the watcher's list", [&] { return !watcher.registered.isEmpty(); });
    await("the end of the icon in the panel", [] { return windowsNamed("velmorquit").empty(); });
    watcher.disappear();
    awaitIcon();
    click("1");
    await("the panel", isPanelShown);
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
