#include "Linux/Applications/LinuxWindows.h"
#include "Linux/Proc/ProcProcesses.h"
#include "Linux/Session/BusEndService.h"
#include "Linux/Session/BusSessionRegistry.h"
#include "Services/SessionEnd/SessionEnd.h"
#include "Simulated/SimulatedSession.h"
#include "X11/WorkspaceTest.h"

#include <cerrno>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;

const fs::path configurationService = "/usr/share/dbus-1/services/org.xfce.Xfconf.service";

fs::path folder(const char* variable) { return std::getenv(variable); }

/// Session managers name their sockets after their process. One that was killed leaves its own,
/// and on virtual desktops, whose processes are counted from one, another may soon have its number.
void removeDeadSockets() {
    std::error_code unreadable;
    for (const auto& entry : fs::directory_iterator("/tmp/.ICE-unix", unreadable)) {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        const std::string path = entry.path().string();
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        const int connection = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const auto* const name = reinterpret_cast<const sockaddr*>(&address);
        if (::connect(connection, name, sizeof(address)) != 0 && errno == ECONNREFUSED)
            fs::remove(entry.path(), unreadable);
        ::close(connection);
    }
}

/// A real session manager on the virtual desktop, and real windows.
class RealSessionEndTest : public WorkspaceTest {
protected:
    void SetUp() override {
        if (std::system("command -v xfce4-session >/dev/null") != 0 ||
            !fs::exists(configurationService))
            GTEST_SKIP() << "xfce4-session is not installed";
        ASSERT_TRUE(std::getenv("VELMOR_VIRTUAL_DESKTOP"));
        removeDeadSockets();
        fs::copy(configurationService, folder("XDG_DATA_HOME") / "dbus-1" / "services");
        QDBusConnection::sessionBus().call(
            QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                           "org.freedesktop.DBus", "ReloadConfig"));
        const fs::path settings =
            folder("XDG_CONFIG_HOME") / "xfce4" / "xfconf" / "xfce-perchannel-xml";
        fs::create_directories(settings);
        fs::copy(TEST_DATA "/empty-session.xml", settings / "xfce4-session.xml");
        // Without the programs that the machine has for every session.
        manager =
            std::make_unique<Child>(Words{"env", "XDG_CONFIG_DIRS=/nonexistent", "xfce4-session"});
        ASSERT_TRUE(waitUntil([this] {
            return service.isReady() && !service.obstacle(LoginRequest::logOut, EndForm::direct);
        })) << manager->output();
    }

    PowerBus session = PowerBus::session(PowerBus::Environment::ofThisProcess());
    PowerBus system = PowerBus::system(PowerBus::Environment::ofThisProcess());
    BusEndService service{session, system, {}};
    LinuxWindows windows{toplevels, workspace, {}};
    ProcProcesses processes{{[] { return std::set<ProcessId>(); },
                             [] { return std::set<ProcessId>(); },
                             [] { return std::set<ProcessId>(); }}};
    BusSessionRegistry registry{session, system, {}};
    SimulatedInput input{loop};
    SimulatedSleepHold hold;
    SessionEnd end{{loop, log, workspace, windows, processes, registry, input, hold, service}};
    std::unique_ptr<Child> manager;
};

TEST_F(RealSessionEndTest, TheSessionEndsWhenTheLastWindowHasClosedUnlessThatIsCancelled) {
    EXPECT_NE(system.problem(), "") << "a virtual desktop has no system bus";
    const auto asking = open({"--asks"});
    EXPECT_EQ(end.request(LoginRequest::logOut, {}), std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return timesAsked(children.front()) == 1; }));
    end.cancel();
    children.clear();
    linger(1000);
    EXPECT_TRUE(manager->isRunning());

    const auto stubborn = open({"--ignore"});
    const auto polite = open();
    EXPECT_EQ(end.request(LoginRequest::logOut, {}), std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return polite->isTerminated(); }));
    linger(1500);
    EXPECT_TRUE(manager->isRunning()) << "something is still open";
    children.clear();
    EXPECT_TRUE(waitUntil([this] { return !manager->isRunning(); })) << manager->output();
    EXPECT_EQ(manager->status(), 0);
    linger(300);
    EXPECT_EQ(log.lines.back(), "Velmor Quit: chiusura della sessione: aspetto Rude");
}

} // namespace
} // namespace velmorquit
