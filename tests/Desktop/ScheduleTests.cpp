#include "Desktop/DesktopStory.h"

#include "support/Waiting.h"

#include <cstdlib>

namespace velmorquit {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using Schedule = DesktopStory;

TEST_F(Schedule, ARunBeginsByItselfWhenItsMomentHasCome) {
    prefer({{"confirmScheduled", false}});
    startProgram();
    Child& application = openRude();
    Child watch({VELMORCTL, "watch"});
    EXPECT_THAT(control({"schedule", "--minutes", "1", "--then", "nothing"}).text,
                StartsWith("Fatto: alle "));
    EXPECT_THAT(control({"status"}).text, HasSubstr("(Chiudi tutto)\n"));
    linger(50000);
    EXPECT_TRUE(application.isRunning());
    await("the scheduled run", [&] { return !application.isRunning(); });
    await("its end", [] { return phase() == "done"; });
    for (const char* line : {"programmata tra 10 secondi", "programmata tra 1 secondo\n",
                             "Nessuna chiusura programmata", "Finito: 1 app chiusa"})
        EXPECT_THAT(watch.output(), HasSubstr(line));
}

TEST_F(Schedule, AnActionStartsTheProgramAndAsksOnTheScreen) {
    write(std::filesystem::path(std::getenv("XDG_DATA_HOME")) / "dbus-1" / "services" /
              "org.velmorquit.VelmorQuit.service",
          std::string("[D-BUS Service]\nName=org.velmorquit.VelmorQuit\nExec=") + VELMORQUIT +
              '\n');
    run({"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
         "org.freedesktop.DBus.ReloadConfig"});
    EXPECT_EQ(control({"status"}).status, 3) << "a question alone starts nothing";
    const Outcome memory = control({"memory"});
    EXPECT_EQ(memory.status, 0);
    EXPECT_THAT(memory.text, StartsWith("In uso "));

    Child& application = openRude();
    awaitListed(application);
    const auto ask = [] {
        EXPECT_EQ(control({"action", "quit-all", "then=restart"}).status, 0);
        focus("velmorquit");
    };
    ask();
    run({"xdotool", "key", "Return"});
    linger(1000);
    EXPECT_EQ(phase(), "idle") << "the safe answer is the one at hand";
    ask();
    run({"xdotool", "key", "Tab", "Return"});
    await("the end of the application", [&] { return !application.isRunning(); });
    EXPECT_THAT(control({"actions"}).text, HasSubstr("reopen-apps"));
    EXPECT_EQ(control({"action", "schedule-quit", "minutes=7"}).status, 0);
    await("the schedule", [] { return !status()["schedule"].isNull(); });
    EXPECT_EQ(control({"action", "cancel-schedule"}).status, 0);
    await("its end", [] { return status()["schedule"].isNull(); });
    EXPECT_EQ(control({"action", "reopen-apps"}).status, 0);
    EXPECT_EQ(
        run({"gdbus", "call", "--session", "--dest", "org.velmorquit.VelmorQuit", "--object-path",
             "/org/velmorquit/VelmorQuit", "--method", "org.freedesktop.Application.ActivateAction",
             "schedule-quit", "[<int32 601>]", "{}"})
            .status,
        1);
}

} // namespace
} // namespace velmorquit
