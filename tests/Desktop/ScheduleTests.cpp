#include "Desktop/DesktopStory.h"

namespace velmorquit {
namespace {

using Schedule = DesktopStory;

TEST_F(Schedule, AnActionStartsTheProgramAndAsksOnTheScreen) {
    write(folder("XDG_DATA_HOME") / "dbus-1" / "services" / "org.velmorquit.VelmorQuit.service",
          "[D-BUS Service]\nName=org.velmorquit.VelmorQuit\nExec=" VELMORQUIT "\n");
    run({"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
         "org.freedesktop.DBus.ReloadConfig"});
    EXPECT_EQ(control({"status"}).status, 3) << "a question alone starts nothing";
    EXPECT_THAT(control({"memory"}), ends(0, StartsWith("In uso ")));

    Child& application = openRude();
    await("the application", [] { return names("applications") == Words{"Rude"}; });
    const auto ask = [] {
        EXPECT_EQ(control({"action", "quit-all", "then=restart"}).status, 0);
        focus("velmorquit");
    };
    ask();
    press({"Return"});
    linger(1000);
    EXPECT_EQ(phase(), "idle") << "the safe answer is the one at hand";
    ask();
    press({"Tab", "Return"});
    awaitEnd(application);
    EXPECT_THAT(control({"actions"}).text, HasSubstr("reopen-apps"));
    EXPECT_EQ(control({"action", "schedule-quit", "minutes=7"}).status, 0);
    await("the schedule", [] { return !status()["schedule"].isNull(); });
    EXPECT_EQ(control({"action", "cancel-schedule"}).status, 0);
    await("its end", [] { return status()["schedule"].isNull(); });
    EXPECT_EQ(control({"action", "reopen-apps"}).status, 0);

    const auto call = [](const std::string& method, const Words& arguments) {
        Words command{"gdbus",     "call",
                      "--session", "--dest=org.velmorquit.VelmorQuit",
                      "-o",        "/org/velmorquit/VelmorQuit",
                      "-m",        "org.freedesktop.Application." + method};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return run(command);
    };
    EXPECT_EQ(call("Activate", {"{'activation-token': <'x'>}"}).text, "()\n");
    EXPECT_EQ(call("Open", {"['file:///etc/passwd']", "{}"}).text, "()\n");
    EXPECT_EQ(call("ActivateAction", {"schedule-quit", "[<int32 601>]", "{}"}).status, 1);
    EXPECT_THAT(call("ActivateAction", {"quitAll", "[]", "{}"}),
                ends(1, HasSubstr("Azione sconosciuta: quitAll")));
    EXPECT_TRUE(status()["schedule"].isNull());
}

} // namespace
} // namespace velmorquit
