#include "Linux/Power/BusSleepHold.h"
#include "Linux/Power/BusSleepHolds.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <QDBusUnixFileDescriptor>

#include <memory>
#include <optional>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace velmorquit {
namespace {

constexpr const char* loginName = "org.freedesktop.login1";
constexpr const char* gnomeName = "org.gnome.SessionManager";
constexpr const char* powerName = "org.freedesktop.PowerManagement";

/// Stands for whoever keeps a computer awake when asked.
class Manager final : public StandInService {
public:
    Manager(const QDBusConnection& connection, const char* name, const char* path)
        : StandInService(connection, {name}), path_(path) {
        says["Inhibit"] = 42U;
    }

    /// Whether somebody still has the lock that was given.
    [[nodiscard]] bool isLocked() const {
        pollfd wait{.fd = reading_, .events = POLLIN, .revents = 0};
        return reading_ >= 0 && ::poll(&wait, 1, 0) == 0;
    }

protected:
    void reply(const QDBusMessage& call) override {
        EXPECT_EQ(call.path(), path_);
        if (call.interface() != "org.freedesktop.login1.Manager" || says["Inhibit"] != 42U)
            return StandInService::reply(call);
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        reading_ = ends[0];
        send(call, QVariant::fromValue(QDBusUnixFileDescriptor(ends[1])));
        ::close(ends[1]);
    }

private:
    QString path_;
    int reading_ = -1;
};

class BusSleepHoldTest : public testing::Test {
protected:
    static constexpr auto anySleep = BusSleepHold::Against::anySleep;
    static constexpr auto idleSleep = BusSleepHold::Against::idleSleep;

    void settleAll() { settle({session.connection(), system.connection(), gnome->bus}); }
    static bool hears(const Manager& manager, qsizetype calls) {
        return waitUntil([&] { return manager.calls.size() == calls; });
    }
    bool isHeldBySession() {
        return waitUntil([&] { return hold->isHeldBySession(); });
    }

    PrivateBus bus;
    PowerBus session = PowerBus::standIn(bus.address(), bus.folder());
    PowerBus system = PowerBus::standIn(bus.address(), bus.folder());
    Manager login1{bus.connect(), loginName, "/org/freedesktop/login1"};
    std::unique_ptr<Manager> gnome =
        std::make_unique<Manager>(bus.connect(), gnomeName, "/org/gnome/SessionManager");
    Manager power{bus.connect(), powerName, "/org/freedesktop/PowerManagement/Inhibit"};
    std::optional<BusSleepHold> hold{std::in_place, session, system};
};

TEST_F(BusSleepHoldTest, HoldsAtLogin1AndAtTheSessionsManagerUntilItGoes) {
    hold->begin("Backup", anySleep);
    ASSERT_TRUE(waitUntil([&] { return hold->isHeldBySystem() && hold->isHeldBySession(); }));
    EXPECT_EQ(login1.calls, QStringList{"Inhibit | sleep:idle | Velmor Quit | Backup | block"});
    EXPECT_TRUE(login1.isLocked());
    hold.reset();
    EXPECT_TRUE(waitUntil([&] { return !login1.isLocked(); }));
    settleAll();
    EXPECT_EQ(gnome->calls,
              (QStringList{"Inhibit | Velmor Quit | 0 | Backup | 12", "Uninhibit | 42"}));
    EXPECT_EQ(power.calls, QStringList());
}

TEST_F(BusSleepHoldTest, WhatIsGrantedTooLateIsGivenBack) {
    login1.isSlow = gnome->isSlow = true;
    hold->begin("Plan", idleSleep);
    ASSERT_TRUE(hears(login1, 1) && hears(*gnome, 1));
    hold->end();
    login1.answer();
    gnome->answer();
    EXPECT_TRUE(hears(*gnome, 2) && waitUntil([&] { return !login1.isLocked(); }));
    EXPECT_EQ(login1.calls, QStringList{"Inhibit | idle | Velmor Quit | Plan | block"});
    EXPECT_EQ(gnome->calls,
              (QStringList{"Inhibit | Velmor Quit | 0 | Plan | 8", "Uninhibit | 42"}));
    EXPECT_FALSE(hold->isHeldBySystem() || hold->isHeldBySession());
}

TEST_F(BusSleepHoldTest, OneThatHangsIsPassedOverAndItsGrantIsNeverForgotten) {
    hold.emplace(session, system, 50);
    gnome->isSlow = power.isSlow = true;
    hold->begin("Plan", idleSleep);
    ASSERT_TRUE(hears(power, 1));
    power.answer();
    ASSERT_TRUE(isHeldBySession());
    gnome->answer();
    EXPECT_TRUE(hears(*gnome, 2));
    EXPECT_EQ(gnome->calls.last(), "Uninhibit | 42");
    EXPECT_EQ(power.calls.size(), 1);
}

TEST_F(BusSleepHoldTest, TheNextManagerIsAskedWhereOneRefuses) {
    gnome->says["Inhibit"] = login1.says["Inhibit"] = Refusal{"org.test.No"};
    for (const char* reason : {"Backup", "Again"}) {
        hold->begin(reason, anySleep);
        ASSERT_TRUE(isHeldBySession());
        EXPECT_FALSE(hold->isHeldBySystem());
    }
    settleAll();
    EXPECT_EQ(power.calls, (QStringList{"Inhibit | Velmor Quit | Backup", "UnInhibit | 42",
                                        "Inhibit | Velmor Quit | Again"}));
}

TEST_F(BusSleepHoldTest, WhoComesBackIsAskedAgainForWhatIsStillHeld) {
    hold.reset();
    BusSleepHolds holds(session, system);
    Handle plan = holds.begin("Plan");
    const Handle run = holds.begin("Run");
    EXPECT_TRUE(hears(*gnome, 2));
    plan.reset();
    EXPECT_TRUE(hears(*gnome, 3));
    EXPECT_EQ(gnome->calls.last(), "Uninhibit | 42");
    gnome->disown(gnomeName);
    gnome = std::make_unique<Manager>(bus.connect(), gnomeName, "/org/gnome/SessionManager");
    EXPECT_TRUE(hears(*gnome, 1));
    EXPECT_EQ(gnome->calls, QStringList{"Inhibit | Velmor Quit | 0 | Run | 8"});
}

} // namespace
} // namespace velmorquit
