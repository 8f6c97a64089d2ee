#include "Linux/Power/BusSleepHold.h"
#include "Linux/Power/BusSleepHolds.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace velmorquit {
namespace {

/// Stands for whoever keeps a computer awake when asked.
class Manager final : public StandInService {
public:
    Manager(const QDBusConnection& connection, const char* name, QString path)
        : StandInService(connection, {name}), path_(std::move(path)) {}

    void hear(const QDBusMessage& message) override {
        EXPECT_EQ(message.path(), path_);
        QStringList words{message.member()};
        for (const QVariant& argument : message.arguments())
            words << argument.toString();
        log << words.join(" | ");
        if (message.member() != "Inhibit")
            return;
        pending = message;
        if (!isSlow)
            answer();
    }

    void answer() {
        if (doesRefuse)
            bus.send(pending.createErrorReply("org.test.No", "no"));
        else if (pending.interface() != "org.freedesktop.login1.Manager")
            bus.send(pending.createReply(QVariant(42U)));
        else
            giveLock();
    }

    /// Whether somebody still has the lock that was given.
    [[nodiscard]] bool isLocked() const {
        pollfd wait{.fd = reading_, .events = POLLIN, .revents = 0};
        return reading_ >= 0 && ::poll(&wait, 1, 0) == 0;
    }

    bool isSlow = false;
    bool doesRefuse = false;
    QDBusMessage pending;
    QStringList log;

private:
    void giveLock() {
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        reading_ = ends[0];
        bus.send(pending.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(ends[1]))));
        ::close(ends[1]);
        pending = {};
    }

    QString path_;
    int reading_ = -1;
};

class BusSleepHoldTest : public testing::Test {
protected:
    void settleAll() { settle({session.connection(), system.connection(), gnome->bus}); }

    PrivateBus bus;
    PowerBus session = PowerBus::standIn(bus.address(), bus.folder());
    PowerBus system = PowerBus::standIn(bus.address(), bus.folder());
    Manager login1{bus.connect(), "org.freedesktop.login1", "/org/freedesktop/login1"};
    std::unique_ptr<Manager> gnome = std::make_unique<Manager>(
        bus.connect(), "org.gnome.SessionManager", "/org/gnome/SessionManager");
    Manager power{bus.connect(), "org.freedesktop.PowerManagement",
                  "/org/freedesktop/PowerManagement/Inhibit"};
    std::optional<BusSleepHold> hold{std::in_place, session, system};
};

TEST_F(BusSleepHoldTest, HoldsAtLogin1AndAtTheSessionsManagerUntilItGoes) {
    hold->begin("Backup", BusSleepHold::Against::anySleep);
    ASSERT_TRUE(waitUntil([&] { return hold->isHeldBySystem() && hold->isHeldBySession(); }));
    EXPECT_EQ(login1.log, QStringList{"Inhibit | sleep:idle | Velmor Quit | Backup | block"});
    EXPECT_EQ(gnome->log, QStringList{"Inhibit | Velmor Quit | 0 | Backup | 12"});
    EXPECT_TRUE(login1.isLocked());
    hold.reset();
    EXPECT_TRUE(waitUntil([&] { return !login1.isLocked(); }));
    settleAll();
    EXPECT_EQ(gnome->log.value(1), "Uninhibit | 42");
    EXPECT_EQ(power.log, QStringList());
}

TEST_F(BusSleepHoldTest, WhatIsGrantedTooLateIsGivenBack) {
    login1.isSlow = gnome->isSlow = true;
    hold->begin("Plan", BusSleepHold::Against::idleSleep);
    ASSERT_TRUE(waitUntil([&] { return !login1.log.isEmpty() && !gnome->log.isEmpty(); }));
    EXPECT_EQ(login1.log, QStringList{"Inhibit | idle | Velmor Quit | Plan | block"});
    EXPECT_EQ(gnome->log, QStringList{"Inhibit | Velmor Quit | 0 | Plan | 8"});
    hold->end();
    login1.answer();
    gnome->answer();
    EXPECT_TRUE(waitUntil([&] { return gnome->log.size() == 2 && !login1.isLocked(); }));
    EXPECT_FALSE(hold->isHeldBySystem() || hold->isHeldBySession());
}

TEST_F(BusSleepHoldTest, OneThatHangsIsPassedOverAndItsGrantIsNeverForgotten) {
    hold.emplace(session, system, 50);
    gnome->isSlow = power.isSlow = true;
    hold->begin("Plan", BusSleepHold::Against::idleSleep);
    ASSERT_TRUE(waitUntil([&] { return power.log.size() == 1; }));
    power.answer();
    ASSERT_TRUE(waitUntil([&] { return hold->isHeldBySession(); }));
    gnome->answer();
    EXPECT_TRUE(waitUntil([&] { return gnome->log.size() == 2; }));
    EXPECT_EQ(gnome->log.value(1), "Uninhibit | 42");
    EXPECT_EQ(power.log.size(), 1);

    // When both are late the first one that grants it has it.
    hold->begin("Plan", BusSleepHold::Against::idleSleep);
    ASSERT_TRUE(waitUntil([&] { return power.log.size() == 3; }));
    linger(100);
    EXPECT_FALSE(hold->isHeldBySession());
    gnome->answer();
    ASSERT_TRUE(waitUntil([&] { return hold->isHeldBySession(); }));
    hold.reset();
    EXPECT_TRUE(waitUntil([&] { return gnome->log.size() == 4; }));
    power.answer();
    EXPECT_TRUE(waitUntil([&] { return power.log.size() == 4; }));
}

TEST_F(BusSleepHoldTest, TheNextManagerIsAskedWhereOneRefusesAndNobodyIsMissed) {
    gnome->doesRefuse = login1.doesRefuse = true;
    hold->begin("Backup", BusSleepHold::Against::anySleep);
    ASSERT_TRUE(waitUntil([&] { return hold->isHeldBySession(); }));
    EXPECT_FALSE(hold->isHeldBySystem());
    hold->begin("Again", BusSleepHold::Against::anySleep);
    ASSERT_TRUE(waitUntil([&] { return hold->isHeldBySession(); }));
    settleAll();
    EXPECT_EQ(power.log, (QStringList{"Inhibit | Velmor Quit | Backup", "UnInhibit | 42",
                                      "Inhibit | Velmor Quit | Again"}));

    const PowerBus none = PowerBus::standIn("", bus.folder());
    BusSleepHold alone(none, none);
    alone.begin("Backup", BusSleepHold::Against::anySleep);
    linger(20);
    EXPECT_FALSE(alone.isHeldBySystem() || alone.isHeldBySession());
}

TEST_F(BusSleepHoldTest, WhoComesBackIsAskedAgainForWhatIsStillHeld) {
    hold.reset();
    BusSleepHolds holds(session, system);
    Handle plan = holds.begin("Plan");
    const Handle run = holds.begin("Run");
    EXPECT_TRUE(waitUntil([&] { return gnome->log.size() == 2; }));
    plan.reset();
    EXPECT_TRUE(waitUntil([&] { return gnome->log.size() == 3; }));
    EXPECT_EQ(gnome->log.last(), "Uninhibit | 42");
    gnome->disown("org.gnome.SessionManager");
    gnome = std::make_unique<Manager>(bus.connect(), "org.gnome.SessionManager",
                                      "/org/gnome/SessionManager");
    EXPECT_TRUE(waitUntil([&] { return gnome->log.size() == 1; }));
    EXPECT_EQ(gnome->log, QStringList{"Inhibit | Velmor Quit | 0 | Run | 8"});
}

} // namespace
} // namespace velmorquit
