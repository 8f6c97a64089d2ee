#include "Linux/Power/PowerBus.h"
#include "support/PrivateBus.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;
using Environment = PowerBus::Environment;
using Build = PowerBus::Build;

/// A folder such as a virtual desktop has.
class PowerBusTest : public testing::Test {
protected:
    PowerBusTest() { fs::create_directory(desktop_ / "run"); }

    [[nodiscard]] Environment onDesktop() const {
        return {.virtualDesktop = "1",
                .runtimeFolder = desktop_ / "run",
                .sessionBus = bus_.address(),
                .standInSystemBus = bus_.address()};
    }

    static void expectRefused(const PowerBus& bus) {
        EXPECT_FALSE(bus.connection().isConnected());
        EXPECT_NE(bus.problem(), "");
    }
    static void expectBothRefused(const Environment& environment,
                                  std::initializer_list<Build> builds = {Build::use,
                                                                         Build::tests}) {
        for (const Build build : builds) {
            expectRefused(PowerBus::session(environment, build));
            expectRefused(PowerBus::system(environment, build));
        }
    }

    const TemporaryFolder folder_{"velmor-desktop."};
    const fs::path& desktop_ = folder_.path();
    PrivateBus bus_;
};

TEST_F(PowerBusTest, ABuildForTestsNeverUsesTheSessionsOrTheMachinesBus) {
    Environment noDesktop = onDesktop();
    noDesktop.virtualDesktop.clear();
    for (const Environment& environment :
         {Environment(), Environment{.runtimeFolder = "/run/user/0"}, noDesktop}) {
        expectRefused(PowerBus::session(environment));
        expectRefused(PowerBus::system(environment));
    }
}

// The library would take the system's own socket where the variable isn't set.
TEST_F(PowerBusTest, WhateverTheEnvironmentSaysOfTheSystemBusIsNotUsed) {
    for (const char* address : {"", "unix:path=/run/dbus/system_bus_socket",
                                "unix:path=/var/run/dbus/system_bus_socket"}) {
        if (*address)
            ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1);
        else
            ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
        expectRefused(PowerBus::system(Environment::ofThisProcess()));
        Environment desktop = onDesktop();
        desktop.standInSystemBus.clear();
        for (const Build build : {Build::use, Build::tests})
            expectRefused(PowerBus::system(desktop, build));
        desktop.standInSystemBus = desktop.sessionBus = address;
        expectBothRefused(desktop);
    }
    ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

TEST_F(PowerBusTest, AVirtualDesktopUsesOnlyWhatLiesInItsFolder) {
    PrivateBus inside("velmor-desktop.");
    const Environment itsOwn{.virtualDesktop = "1",
                             .runtimeFolder = inside.folder() / "run",
                             .sessionBus = inside.address(),
                             .standInSystemBus = inside.address()};
    for (const Build build : {Build::use, Build::tests}) {
        EXPECT_EQ(PowerBus::session(itsOwn, build).problem(), "");
        EXPECT_EQ(PowerBus::system(itsOwn, build).problem(), "");
    }
    expectBothRefused(onDesktop());
    // A way into the folder is not a place in it.
    fs::create_symlink(bus_.folder() / "bus", desktop_ / "link");
    Environment environment = onDesktop();
    for (const fs::path& path :
         {desktop_ / "link", desktop_ / ".." / bus_.folder().filename() / "bus"}) {
        ASSERT_TRUE(fs::exists(path)) << path;
        environment.sessionBus = "unix:path=" + path.string();
        expectBothRefused(environment, {Build::use});
    }
    // Nor is a folder that is no virtual desktop's a place for stand-ins.
    environment = onDesktop();
    for (const fs::path& folder : {bus_.folder() / "run", fs::path("/run/user/0"), fs::path()}) {
        environment.runtimeFolder = folder;
        expectBothRefused(environment, {Build::use});
    }
}

TEST_F(PowerBusTest, AddressesThatCouldMeanSomethingElseAreRefused) {
    const std::string good = bus_.address();
    const std::string path = "unix:path=";
    std::ofstream(bus_.folder() / "file"); // which doesn't answer
    for (const std::string& address :
         {std::string(), good + ";unix:path=/run/dbus/system_bus_socket", ";" + good,
          std::string("autolaunch:"), std::string("unix:runtime=yes"),
          "unix:abstract=" + (bus_.folder() / "bus").string(), good + "%2F..", good + ",path=/run",
          path + "relative", good + "-missing", path + (bus_.folder() / "file").string()})
        expectRefused(PowerBus::standIn(address, bus_.folder()));
    expectRefused(PowerBus::standIn(good, "/"));
    expectRefused(PowerBus::standIn(good, bus_.folder().string() + "-missing"));
}

// In a namespace in which a bus of the test lies where the system's own would.
TEST_F(PowerBusTest, TheSystemsOwnSocketIsNoStandInWhateverPathLeadsThere) {
    const std::string system = "/run/dbus/system_bus_socket";
    if (const char* same = std::getenv("VELMOR_TEST_SYSTEM_SOCKET")) {
        EXPECT_TRUE(
            QDBusConnection::connectToBus(QString::fromStdString("unix:path=" + system), "direct")
                .isConnected());
        QDBusConnection::disconnectFromBus("direct");
        expectRefused(PowerBus::standIn("unix:path=" + system, "/run/dbus"));
        expectRefused(PowerBus::standIn("unix:path=/var" + system, "/run"));
        expectRefused(
            PowerBus::standIn(std::string("unix:path=") + same, fs::path(same).parent_path()));
        return;
    }
    const std::string socket = bus_.folder() / "bus";
    Child inside({"unshare", "--mount", "--map-current-user", "bash", "-c",
                  "mount -t tmpfs none /run && mkdir /run/dbus && touch " + system +
                      " && mount --bind " + socket + ' ' + system +
                      " || exit 77; VELMOR_TEST_SYSTEM_SOCKET=" + socket + " exec " +
                      fs::read_symlink("/proc/self/exe").string() +
                      " --gtest_filter=PowerBusTest.TheSystemsOwnSocket*"});
    ASSERT_TRUE(waitUntil([&] { return !inside.isRunning(); }));
    if (inside.output().find("[ RUN") == std::string::npos)
        GTEST_SKIP() << "no namespaces here: " << inside.output();
    EXPECT_EQ(inside.status(), 0) << inside.output();
}

} // namespace
} // namespace velmorquit
