#include "Linux/DBus/BusNotice.h"
#include "Linux/Session/DesktopEndNotice.h"
#include "Linux/Session/PowerBus.h"
#include "support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

#include <memory>

namespace velmorquit {
namespace {

/// Stands for the desktop's notification service.
class Service final : public QDBusVirtualObject {
public:
    explicit Service(QDBusConnection bus) : bus_(std::move(bus)) {
        EXPECT_TRUE(bus_.registerVirtualObject("/org/freedesktop/Notifications", this));
        EXPECT_TRUE(bus_.registerService("org.freedesktop.Notifications"));
    }

    [[nodiscard]] const QDBusConnection& bus() const { return bus_; }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        const QVariantList in = message.arguments();
        if (message.member() == "CloseNotification") {
            log << "close " + in.value(0).toString();
            bus_.send(message.createReply());
            return true;
        }
        EXPECT_EQ(message.signature(), "susssasa{sv}i");
        const uint replaced = in.value(1).toUInt();
        log << (replaced == 0 ? QStringLiteral("show") : "replace " + in.value(1).toString()) +
                   " | " + in.value(3).toString() + " | " + in.value(4).toString() + " | " +
                   in.value(5).toStringList().join('=') + " | " + in.value(7).toString();
        const uint number = replaced == 0 ? ++last_ : replaced;
        if (isSlow)
            pending = message.createReply(number);
        else
            bus_.send(message.createReply(number));
        return true;
    }

    void answer() { bus_.send(pending); }
    void emitSignal(const QString& name, uint number, const QVariant& argument) {
        tell(bus_, name, number, argument);
    }
    static void tell(QDBusConnection bus, const QString& name, uint number,
                     const QVariant& argument) {
        QDBusMessage signal = QDBusMessage::createSignal("/org/freedesktop/Notifications",
                                                         "org.freedesktop.Notifications", name);
        signal << number << argument;
        bus.send(signal);
    }

    bool isSlow = false;
    QDBusMessage pending;
    QStringList log;

private:
    QDBusConnection bus_;
    uint last_ = 6;
};

/// What a session's end is told with.
struct ShownNotice {
    explicit ShownNotice(const PowerBus& session) : notice(session.connection()) {}

    BusNotice notice;
    DesktopEndNotice end{notice};
};

class BusNoticeTest : public testing::Test {
protected:
    BusNoticeTest() {
        notice->end.onCancel = [this] { ++cancelled; };
    }

    void settleAll() { settle({session.connection(), service.bus()}); }

    /// What the service has heard since the last time, when there is nothing more to hear.
    QStringList heard() {
        settleAll();
        return std::exchange(service.log, {});
    }

    PrivateBus bus;
    PowerBus session = PowerBus::standIn(bus.address(), bus.folder());
    Service service{bus.connect()};
    std::unique_ptr<ShownNotice> notice = std::make_unique<ShownNotice>(session);
    int cancelled = 0;
};

TEST_F(BusNoticeTest, SaysWhatItWaitsForAndWhatHasCome) {
    notice->end.showWaiting(LoginRequest::shutDown, {"R&D <Note>"});
    EXPECT_EQ(heard(), QStringList{"show | Sto per spegnere il computer | Aspetto che si chiuda "
                                   "R&amp;D &lt;Note&gt;. | cancel=Annulla | 0"});
    notice->end.showWaiting(LoginRequest::restart, {"Note", "Mail"});
    EXPECT_EQ(heard(), QStringList{"replace 7 | Sto per riavviare il computer | Aspetto che si "
                                   "chiudano 2 app: Note, Mail. | cancel=Annulla | 0"});
    notice->end.showGivenUp(LoginRequest::logOut, {"Note"});
    EXPECT_EQ(heard(), QStringList{"replace 7 | La sessione non è stata chiusa | Note è rimasta "
                                   "aperta. |  | -1"});
    notice->end.showGivenUp(LoginRequest::restart, {"Note", "Mail"});
    EXPECT_EQ(heard(), QStringList{"replace 7 | Il computer non è stato riavviato | 2 app sono "
                                   "rimaste aperte: Note, Mail. |  | -1"});
    notice->end.showFailure(LoginRequest::shutDown);
    EXPECT_EQ(heard(), QStringList{"replace 7 | Il computer non è stato spento | Il sistema ha "
                                   "rifiutato o non ha risposto. |  | -1"});
    notice->end.withdraw();
    EXPECT_EQ(heard(), QStringList{"close 7"});
    notice->end.withdraw();
    notice.reset();
    EXPECT_EQ(heard(), QStringList());
}

TEST_F(BusNoticeTest, WhatComesWhileTheServiceIsSlowIsToldWhenItHasAnswered) {
    service.isSlow = true;
    notice->end.showWaiting(LoginRequest::shutDown, {"Note"});
    EXPECT_EQ(heard().size(), 1);
    notice->end.showWaiting(LoginRequest::shutDown, {"Mail"});
    notice->end.withdraw();
    EXPECT_EQ(heard(), QStringList());
    service.answer();
    EXPECT_EQ(heard(), QStringList{"close 7"});

    notice->end.showWaiting(LoginRequest::shutDown, {"Note"});
    EXPECT_EQ(heard().size(), 1);
    notice->end.showWaiting(LoginRequest::shutDown, {"Mail"});
    notice->end.showGivenUp(LoginRequest::shutDown, {"Mail"});
    service.answer();
    EXPECT_EQ(heard(), QStringList{"replace 8 | Il computer non è stato spento | Mail è rimasta "
                                   "aperta. |  | -1"});
}

TEST_F(BusNoticeTest, TheUserCancelsOnlyWhatWaitsAndOnlyHere) {
    notice->end.showWaiting(LoginRequest::shutDown, {"Note"});
    heard();
    service.emitSignal("ActionInvoked", 9, "cancel");
    service.emitSignal("ActionInvoked", 7, "default");
    // Not the one that shows it.
    const QDBusConnection other = bus.connect();
    Service::tell(other, "ActionInvoked", 7, "cancel");
    settle({other});
    settleAll();
    EXPECT_EQ(cancelled, 0);
    service.emitSignal("ActionInvoked", 7, "cancel");
    settleAll();
    EXPECT_EQ(cancelled, 1);
    notice->end.showGivenUp(LoginRequest::shutDown, {"Note"});
    settleAll();
    service.emitSignal("ActionInvoked", 7, "cancel");
    settleAll();
    EXPECT_EQ(cancelled, 1);
}

TEST_F(BusNoticeTest, WhatTheUserPutAwayIsNeitherReplacedNorWithdrawn) {
    notice->end.showWaiting(LoginRequest::shutDown, {"Note", "Mail"});
    heard();
    service.emitSignal("NotificationClosed", 7, 2U);
    settleAll();
    notice->end.withdraw();
    EXPECT_EQ(heard(), QStringList());
    EXPECT_EQ(cancelled, 0);
    notice->end.showGivenUp(LoginRequest::shutDown, {"Note"});
    EXPECT_TRUE(heard().value(0).startsWith("show | "));
}

TEST_F(BusNoticeTest, GoingTakesAwayOnlyWhatWaits) {
    notice->end.showWaiting(LoginRequest::shutDown, {"Note"});
    heard();
    notice.reset();
    EXPECT_EQ(heard(), QStringList{"close 7"});
    notice = std::make_unique<ShownNotice>(session);
    notice->end.showGivenUp(LoginRequest::shutDown, {"Note"});
    heard();
    notice.reset();
    EXPECT_EQ(heard(), QStringList());
}

TEST_F(BusNoticeTest, WithoutAServiceOrABusNothingHappens) {
    const PrivateBus other;
    const PowerBus empty = PowerBus::standIn(other.address(), other.folder());
    const PowerBus none = PowerBus::standIn("", other.folder());
    for (const PowerBus* session : {&empty, &none}) {
        ShownNotice silent(*session);
        silent.end.showWaiting(LoginRequest::shutDown, {"Note"});
        settle({session->connection()});
        silent.end.showGivenUp(LoginRequest::shutDown, {"Note"});
        silent.end.withdraw();
    }
}

} // namespace
} // namespace velmorquit
