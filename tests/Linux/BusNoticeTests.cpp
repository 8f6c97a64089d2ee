#include "Linux/Notices/BusNotice.h"
#include "Linux/Power/PowerBus.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"

#include <QDBusArgument>

#include <gtest/gtest.h>

#include <memory>

namespace velmorquit {
namespace {

/// Stands for the desktop's notification service.
class Service final : public StandInService {
public:
    static constexpr const char* name = "org.freedesktop.Notifications";

    explicit Service(const QDBusConnection& connection) : StandInService(connection, {name}) {}

    void hear(const QDBusMessage& message) override {
        EXPECT_EQ(message.path(), "/org/freedesktop/Notifications");
        const QVariantList in = message.arguments();
        if (message.member() == "CloseNotification") {
            log << "close " + in.value(0).toString();
            bus.send(message.createReply());
            return;
        }
        if (message.member() == "GetCapabilities") {
            ++questions;
            bus.send(message.createReply(capabilities));
            return;
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
            bus.send(message.createReply(number));
    }

    void answer() { bus.send(pending); }
    void emitSignal(const QString& member, uint number, const QVariant& argument) {
        tell(bus, member, number, argument);
    }
    static void tell(QDBusConnection bus, const QString& member, uint number,
                     const QVariant& argument) {
        QDBusMessage signal =
            QDBusMessage::createSignal("/org/freedesktop/Notifications", name, member);
        signal << number << argument;
        bus.send(signal);
    }

    bool isSlow = false;
    QStringList capabilities{"body", "actions"};
    int questions = 0;
    QDBusMessage pending;
    QStringList log;

private:
    uint last_ = 6;
};

/// One that waits for something and can be cancelled, and one that is only told.
struct ShownNotice {
    explicit ShownNotice(const PowerBus& session) : notice(session.connection()) {}

    void wait(const std::string& text) {
        notice.show(
            {.title = "Waiting", .text = text, .buttons = {{"cancel", "No"}}, .stays = true});
    }
    void tell(const std::string& text) { notice.show({.title = "Told", .text = text}); }

    BusNotice notice;
};

class BusNoticeTest : public testing::Test {
protected:
    BusNoticeTest() {
        notice->notice.onButton = [this](const std::string&) { ++cancelled; };
    }

    void settleAll() { settle({session.connection(), service.bus}); }

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
    notice->wait("Note");
    EXPECT_EQ(heard(), QStringList{"show | Waiting | Note | cancel=No | 0"});
    notice->wait("Mail");
    EXPECT_EQ(heard(), QStringList{"replace 7 | Waiting | Mail | cancel=No | 0"});
    notice->tell("Note");
    EXPECT_EQ(heard(), QStringList{"replace 7 | Told | Note |  | -1"});
    notice->notice.withdraw();
    EXPECT_EQ(heard(), QStringList{"close 7"});
    notice->notice.withdraw();
    notice.reset();
    EXPECT_EQ(heard(), QStringList());
}

TEST_F(BusNoticeTest, NamesAreNoMarkupWhateverTheServiceTakesThemFor) {
    notice->wait("<b>R&D</b>");
    EXPECT_EQ(heard(), QStringList{"show | Waiting | <b>R&D</b> | cancel=No | 0"});
    service.capabilities << "body-markup";
    notice->wait("<b>");
    EXPECT_EQ(heard(), QStringList{"replace 7 | Waiting | &lt;b&gt; | cancel=No | 0"});
    // What came while the service was asked counts.
    notice->wait("<i>");
    notice->notice.withdraw();
    EXPECT_EQ(heard(), QStringList{"close 7"});
}

TEST_F(BusNoticeTest, WhatComesWhileTheServiceIsSlowIsToldWhenItHasAnswered) {
    service.isSlow = true;
    notice->wait("Note");
    EXPECT_EQ(heard().size(), 1);
    notice->wait("Mail");
    notice->notice.withdraw();
    EXPECT_EQ(heard(), QStringList());
    service.answer();
    EXPECT_EQ(heard(), QStringList{"close 7"});

    notice->wait("Note");
    EXPECT_EQ(heard().size(), 1);
    notice->wait("Mail");
    notice->tell("Mail");
    service.answer();
    EXPECT_EQ(heard(), QStringList{"replace 8 | Told | Mail |  | -1"});
}

TEST_F(BusNoticeTest, TheUserCancelsOnlyWhatWaitsAndOnlyHere) {
    notice->wait("Note");
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
    notice->tell("Note");
    settleAll();
    service.emitSignal("ActionInvoked", 7, "cancel");
    settleAll();
    EXPECT_EQ(cancelled, 1);
}

TEST_F(BusNoticeTest, WhatTheUserPutAwayIsNeitherReplacedNorWithdrawn) {
    notice->wait("Note");
    heard();
    service.emitSignal("NotificationClosed", 7, 2U);
    settleAll();
    notice->notice.withdraw();
    EXPECT_EQ(heard(), QStringList());
    EXPECT_EQ(cancelled, 0);
    notice->tell("Note");
    EXPECT_TRUE(heard().value(0).startsWith("show | "));
}

TEST_F(BusNoticeTest, TheNextServiceIsAskedAnewAndNeverByTheNumberOfTheLast) {
    for (const bool isQuestion : {true, false}) {
        if (isQuestion)
            notice->wait("Note");
        else
            notice->tell("Note");
        heard();
        service.disown(Service::name);
        settleAll();
        Service next(bus.connect());
        const auto heardByNext = [&] {
            settle({session.connection(), next.bus});
            return std::exchange(next.log, {});
        };
        EXPECT_EQ(heardByNext().size(), isQuestion ? 1 : 0);
        service.emitSignal("ActionInvoked", 7, "cancel");
        settleAll();
        EXPECT_EQ(cancelled, 0) << "who showed it last speaks no more";
        next.emitSignal("ActionInvoked", 7, "cancel");
        heardByNext();
        EXPECT_EQ(std::exchange(cancelled, 0), isQuestion ? 1 : 0);
        notice->tell("Mail");
        EXPECT_TRUE(heardByNext().value(0).startsWith(isQuestion ? "replace 7" : "show | "));
        notice->notice.withdraw();
        next.disown(Service::name);
        service.own(Service::name);
        settleAll();
    }
}

TEST_F(BusNoticeTest, SaysWhenTheServiceHasNoButtonsWhichItIsAskedOnce) {
    int unanswerable = 0;
    notice->wait("Note");
    settleAll();
    EXPECT_EQ(service.questions, 0) << "nobody wants to know";
    notice->notice.onUnanswerable = [&] { ++unanswerable; };
    for (const char* text : {"Note", "Mail"}) {
        notice->wait(text);
        settleAll();
    }
    EXPECT_EQ(service.questions, 1);
    EXPECT_EQ(unanswerable, 0);

    service.disown(Service::name);
    settleAll();
    EXPECT_EQ(std::exchange(unanswerable, 0), 1) << "perhaps no other service comes";
    Service plain(bus.connect());
    plain.capabilities = {"body"};
    const auto settlePlain = [&] { settle({session.connection(), plain.bus}); };
    notice->tell("Note");
    settlePlain();
    EXPECT_EQ(unanswerable, 0);
    for (const char* text : {"Note", "Mail"}) {
        notice->wait(text);
        settlePlain();
    }
    EXPECT_EQ(plain.questions, 1);
    EXPECT_EQ(unanswerable, 2);
    notice->wait("Note");
    notice->notice.withdraw();
    settlePlain();
    EXPECT_EQ(unanswerable, 2) << "nothing is there to be answered";
}

TEST_F(BusNoticeTest, GoingTakesAwayOnlyWhatWaits) {
    notice->wait("Note");
    heard();
    notice.reset();
    EXPECT_EQ(heard(), QStringList{"close 7"});
    notice = std::make_unique<ShownNotice>(session);
    notice->tell("Note");
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
        int unanswerable = 0;
        silent.notice.onUnanswerable = [&] { ++unanswerable; };
        silent.wait("Note");
        EXPECT_EQ(unanswerable, 0) << "it is told later";
        settle({session->connection()});
        EXPECT_EQ(unanswerable, 1);
        silent.tell("Note");
        silent.notice.withdraw();
    }
}

} // namespace
} // namespace velmorquit
