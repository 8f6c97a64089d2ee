#include "Linux/Files/Descriptor.h"
#include "Linux/Windows/DisplayServers.h"
#include "Linux/Windows/SessionTraits.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include <sys/socket.h>
#include <sys/un.h>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;

class DisplayServersTest : public testing::Test {
protected:
    /// A socket that is listened to for as long as the descriptor is open.
    [[nodiscard]] Descriptor listenAt(const fs::path& path, int backlog = 1) const {
        Descriptor server(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        const sockaddr_un address = addressOf(path);
        EXPECT_EQ(::bind(server.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
        EXPECT_EQ(::listen(server.get(), backlog), 0);
        return server;
    }
    static sockaddr_un addressOf(const fs::path& path) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.native().copy(address.sun_path, sizeof address.sun_path - 1);
        return address;
    }

    [[nodiscard]] bool hasAnother(const std::string& display = "",
                                  const std::string& type = "x11") const {
        return DisplayServers({.sessionType = type, .display = display, .runtimeFolder = folder})
            .hasAnotherDisplay();
    }

    const TemporaryFolder temporary;
    const fs::path& folder = temporary.path();
};

TEST_F(DisplayServersTest, WhatIsNotListenedToIsNone) {
    EXPECT_FALSE(hasAnother());
    EXPECT_FALSE(hasAnother("wayland-0"));
    EXPECT_FALSE(hasAnother(std::string(300, 'x')));
    EXPECT_FALSE(DisplayServers({}).hasAnotherDisplay());
    (void)listenAt(folder / "wayland-0"); // which has crashed
    ASSERT_TRUE(fs::is_socket(folder / "wayland-0"));
    temporary.write("wayland-0.lock", "");
    temporary.write("wayland-1", "no socket");
    fs::create_directory(folder / "wayland-2");
    const Descriptor other = listenAt(folder / "wayland-x11");
    const Descriptor inner = listenAt(folder / "wayland-2" / "wayland-0");
    for (const char* display : {"", "wayland-0", "wayland-1", "wayland-2"})
        EXPECT_FALSE(hasAnother(display)) << display;
}

TEST_F(DisplayServersTest, OneThatAnswersCountsWhereverItIsSaidToBe) {
    EXPECT_TRUE(hasAnother("", "wayland"));
    {
        const Descriptor server = listenAt(folder / "wayland-17");
        EXPECT_TRUE(hasAnother() && hasAnother("gone")) << "without anybody saying so";
    }
    EXPECT_FALSE(hasAnother());
    const Descriptor server = listenAt(folder / "other");
    EXPECT_FALSE(hasAnother());
    EXPECT_TRUE(hasAnother("other"));
    EXPECT_TRUE(DisplayServers({.display = folder / "other"}).hasAnotherDisplay());
    EXPECT_FALSE(DisplayServers({.display = "other"}).hasAnotherDisplay());
}

TEST_F(DisplayServersTest, OneThatLetsNobodyInAtTheMomentIsThereAsWell) {
    const Descriptor server = listenAt(folder / "wayland-0", 0);
    std::vector<Descriptor> waiting;
    const sockaddr_un address = addressOf(folder / "wayland-0");
    do
        waiting.emplace_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    while (::connect(waiting.back().get(), reinterpret_cast<const sockaddr*>(&address),
                     sizeof address) == 0);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_TRUE(hasAnother());
}

TEST(SessionTraits, ArePlasmasByOneOfItsNames) {
    for (const char* desktops : {"KDE", "Other:KDE", "KDE:Other"})
        EXPECT_TRUE(traitsOf({.desktops = desktops}).tintsNamedIcons) << desktops;
    for (const char* desktops : {"", "XFCE", "KDE-like:Other", "kde"})
        EXPECT_FALSE(traitsOf({.desktops = desktops}).tintsNamedIcons) << desktops;
}

} // namespace
} // namespace velmorquit
