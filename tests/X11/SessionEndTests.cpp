#include "Linux/Applications/LinuxWindows.h"
#include "Linux/Applications/LinuxWorkspace.h"
#include "Linux/Loop/QtMainLoop.h"
#include "Linux/Proc/ProcProcesses.h"
#include "Linux/Session/BusEndService.h"
#include "Linux/Session/BusSessionRegistry.h"
#include "Linux/X11/X11Toplevels.h"
#include "Services/SessionEnd/SessionEnd.h"
#include "Simulated/SimulatedPorts.h"
#include "Simulated/SimulatedSession.h"
#include "support/Child.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;

const fs::path configurationService = "/usr/share/dbus-1/services/org.xfce.Xfconf.service";

fs::path folder(const char* variable) { return std::getenv(variable); }

/// A session with nothing in it. The manager insists on one program.
constexpr const char* emptySession = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-session" version="1.0">
  <property name="general" type="empty">
    <property name="FailsafeSessionName" type="string" value="Failsafe"/>
    <property name="SaveOnExit" type="bool" value="false"/>
  </property>
  <property name="startup" type="empty">
    <property name="ssh-agent" type="empty">
      <property name="enabled" type="bool" value="false"/>
    </property>
    <property name="gpg-agent" type="empty">
      <property name="enabled" type="bool" value="false"/>
    </property>
  </property>
  <property name="sessions" type="empty">
    <property name="Failsafe" type="empty">
      <property name="IsFailsafe" type="bool" value="true"/>
      <property name="Count" type="int" value="1"/>
      <property name="Client0_Command" type="array">
        <value type="string" value="true"/>
      </property>
    </property>
  </property>
</channel>
)";

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
class RealSessionEndTest : public testing::Test {
protected:
    void SetUp() override {
        if (std::system("command -v xfce4-session >/dev/null") != 0 ||
            !fs::exists(configurationService))
            GTEST_SKIP() << "xfce4-session is not installed";
        ASSERT_TRUE(std::getenv("VELMOR_VIRTUAL_DESKTOP"));
        removeDeadSockets();
        fs::copy(configurationService, folder("XDG_DATA_HOME") / "dbus-1" / "services");
        bus(QStringLiteral("ReloadConfig"));
        const fs::path settings =
            folder("XDG_CONFIG_HOME") / "xfce4" / "xfconf" / "xfce-perchannel-xml";
        fs::create_directories(settings);
        std::ofstream(settings / "xfce4-session.xml") << emptySession;
        // Without the programs that the machine has for every session.
        manager = std::make_unique<Child>(
            std::vector<std::string>{"env", "XDG_CONFIG_DIRS=/nonexistent", "xfce4-session"});
        ASSERT_TRUE(waitUntil([this] {
            return service.isReady() && !service.obstacle(LoginRequest::logOut, EndForm::direct);
        })) << manager->output();
    }

    static void bus(const QString& method) {
        QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method));
    }

    /// Opens a window and waits until the workspace has it.
    std::unique_ptr<Child> open(const std::vector<std::string>& manners = {}) {
        std::vector<std::string> command{RUDE_CLIENT};
        command.insert(command.end(), manners.begin(), manners.end());
        auto child = std::make_unique<Child>(command);
        EXPECT_TRUE(waitUntil([&] {
            for (const auto& application : workspace.runningApplications()) {
                if (application->processId() == child->id())
                    return true;
            }
            return false;
        }));
        return child;
    }

    QtMainLoop loop;
    SimulatedSystemLog log;
    X11Toplevels toplevels{loop, log, *X11Connection::open()};
    LinuxWorkspace workspace{loop, log, toplevels, {}};
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

TEST_F(RealSessionEndTest, TheSessionEndsWhenTheLastWindowHasClosed) {
    EXPECT_NE(system.problem(), "") << "a virtual desktop has no system bus";
    auto stubborn = open({"--ignore"});
    auto polite = open();
    EXPECT_EQ(end.request(LoginRequest::logOut, {}), std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return !polite->isRunning(); }));
    linger(1500);
    EXPECT_TRUE(manager->isRunning()) << "something is still open";
    stubborn.reset();
    EXPECT_TRUE(waitUntil([this] { return !manager->isRunning(); })) << manager->output();
    EXPECT_EQ(manager->status(), 0);
    linger(300);
    EXPECT_EQ(log.lines.back(), "Velmor Quit: chiusura della sessione: aspetto Rude");
}

TEST_F(RealSessionEndTest, ACancelledLogOutLeavesTheSession) {
    auto asking = open({"--asks"});
    EXPECT_EQ(end.request(LoginRequest::logOut, {}), std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return asking->output().find("asked") != std::string::npos; }));
    end.cancel();
    asking.reset();
    linger(1000);
    EXPECT_TRUE(manager->isRunning());
}

} // namespace
} // namespace velmorquit
