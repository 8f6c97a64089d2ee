#include "Linux/Appearance/DesktopAppearance.h"
#include "Linux/Input/DesktopInput.h"
#include "Linux/Tray/DesktopTrayHosts.h"
#include "Linux/Tray/TrayOwners.h"
#include "Simulated/VirtualLoop.h"
#include "support/PrivateBus.h"
#include "support/StandInPortal.h"
#include "support/StandInWatcher.h"
#include "support/Waiting.h"

#include <unistd.h>

namespace velmorquit {
namespace {

TEST(WithoutAWindowSystem, WhatTheBusKnowsIsKnownAndWithoutABusNobodyIsThere) {
    PrivateBus bus;
    VirtualLoop loop;
    const QDBusConnection own = bus.connect();
    StandInPortal portal(bus.connect());
    portal.groups["org.freedesktop.appearance"]["contrast"] = 1U;
    portal.appear();
    StandInWatcher watcher(bus.connect());
    watcher.items = QStringList{watcher.bus.baseService()};
    watcher.appear();

    const DesktopAppearance look(own, nullptr);
    const DesktopTrayHosts hosts(loop, own, nullptr);
    TrayOwners owners(own, nullptr, 0);
    EXPECT_EQ(hosts.present(), TrayHost::notifier);
    EXPECT_TRUE(waitUntil([&] {
        return look.isHighContrast() && owners.processes() == std::set<ProcessId>{::getpid()};
    }));
    EXPECT_FALSE(owners.click(1));
    hosts.takeIn(1);
    watcher.disappear();
    EXPECT_TRUE(waitUntil([&] { return hosts.present() == TrayHost::none; }));

    DesktopInput input(loop, QDBusConnection("no bus"), nullptr, DesktopInput::Server::whole);
    int told = 0;
    const Handle asking = input.sinceLastInput([&](std::optional<Duration> since) {
        EXPECT_EQ(since, std::nullopt);
        ++told;
    });
    loop.advance(1s);
    EXPECT_EQ(told, 1);
}

} // namespace
} // namespace velmorquit
