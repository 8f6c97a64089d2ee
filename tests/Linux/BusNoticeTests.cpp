#include "Linux/Notices/BusNotice.h"
#include "Linux/Power/PowerBus.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"

#include <memory>

namespace velmorquit {
namespace {

const QStringList nothing;

/// Stands for the desktop's notification service.
class Service final : public StandInService {
public:
    static constexpr const char* name = "org.freedesktop.Notifications";

    explicit Service(const QDBusConnection& connection) : StandInService(connection, {name}) {}

    void press(uint number, const QString& button = "cancel") const {
        tell("ActionInvoked", number, button);
    }
    void tell(const QString& member, uint number, const QVariant& argument) const {
        signal("/org/freedesktop/Notifications", name, member, {number, argument});
    }

    QStringList capabilities{"body", "actions"};
    int questions = 0;

protected:
    [[nodiscard]] QString lineOf(const QDBusMessage& call) const override {
        EXPECT_EQ(call.path(), "/org/freedesktop/Notifications");
        const QVariantList in = call.arguments();
        if (call.member() == "GetCapabilities")
            return {};
        if (call.member() == "CloseNotification")
            return "close " + in.value(0).toString();
        EXPECT_EQ(call.signature(), "susssasa{sv}i");
        const QString replaced = in.value(1).toString();
        return QStringList{replaced == "0" ? QStringLiteral("show") : "replace " + replaced,
                           in.value(3).toString(), in.value(4).toString(),
                           in.value(5).toStringList().join('='), in.value(7).toString()}
            .join(" | ");
    }
    void reply(const QDBusMessage& call) override {
        if (call.member() == "GetCapabilities") {
            ++questions;
            return send(call, capabilities);
        }
        if (call.member() == "CloseNotification")
            return send(call, QVariantList());
        const uint replaced = call.arguments().value(1).toUInt();
        send(call, replaced == 0 ? ++last_ : replaced);
    }

private:
    uint last_ = 6;
};

class BusNoticeTest : public testing::Test {
protected:
    BusNoticeTest() { make(); }

    void make() {
        notice = std::make_unique<BusNotice>(session.connection());
        notice->onButton = [this](const std::string&) { ++cancelled; };
    }
    /// For something, which can be cancelled.
    void wait(const std::string& text) {
        notice->show(
            {.title = "Waiting", .text = text, .buttons = {{"cancel", "No"}}, .stays = true});
    }
    void tell(const std::string& text) { notice->show({.title = "Told", .text = text}); }
    /// What a service has heard since the last time, when there is nothing more to hear.
    QStringList heardBy(Service& one) {
        settle({session.connection(), one.bus});
        return one.takeCalls();
    }
    QStringList heard() { return heardBy(service); }

    PrivateBus bus;
    PowerBus session = PowerBus::standIn(bus.address(), bus.folder());
    Service service{bus.connect()};
    std::unique_ptr<BusNotice> notice;
    int cancelled = 0;
};

TEST_F(BusNoticeTest, SaysWhatItWaitsForAndWhatHasCome) {
    wait("Note");
    EXPECT_EQ(heard(), QStringList{"show | Waiting | Note | cancel=No | 0"});
    tell("Note");
    EXPECT_EQ(heard(), QStringList{"replace 7 | Told | Note |  | -1"});
    notice.reset();
    EXPECT_EQ(heard(), nothing) << "going takes away only what waits";
    make();
    wait("Note");
    EXPECT_EQ(heard().size(), 1);
    notice.reset();
    EXPECT_EQ(heard(), QStringList{"close 8"});
}

TEST_F(BusNoticeTest, NamesAreNoMarkupWhateverTheServiceTakesThemFor) {
    wait("<b>R&D</b>");
    EXPECT_EQ(heard(), QStringList{"show | Waiting | <b>R&D</b> | cancel=No | 0"});
    service.capabilities << "body-markup";
    wait("<b>");
    EXPECT_EQ(heard(), QStringList{"replace 7 | Waiting | &lt;b&gt; | cancel=No | 0"});
    // What came while the service was asked counts.
    wait("<i>");
    notice->withdraw();
    EXPECT_EQ(heard(), QStringList{"close 7"});
}

TEST_F(BusNoticeTest, WhatComesWhileTheServiceIsSlowIsToldWhenItHasAnswered) {
    service.isSlow = true;
    wait("Note");
    EXPECT_EQ(heard().size(), 1);
    wait("Mail");
    notice->withdraw();
    EXPECT_EQ(heard(), nothing);
    service.answer();
    EXPECT_EQ(heard(), QStringList{"close 7"});
    service.answer();

    wait("Note");
    EXPECT_EQ(heard().size(), 1);
    wait("Mail");
    tell("Mail");
    service.answer();
    EXPECT_EQ(heard(), QStringList{"replace 8 | Told | Mail |  | -1"});
}

TEST_F(BusNoticeTest, TheUserCancelsOnlyWhatWaitsAndPutsItAwayForGood) {
    wait("Note");
    heard();
    service.press(9);
    service.press(7, "default");
    heard();
    EXPECT_EQ(cancelled, 0);
    service.press(7);
    heard();
    EXPECT_EQ(cancelled, 1);
    tell("Note");
    heard();
    service.press(7);
    heard();
    EXPECT_EQ(cancelled, 1);

    wait("Note");
    heard();
    service.tell("NotificationClosed", 7, 2U);
    heard();
    notice->withdraw();
    EXPECT_EQ(heard(), nothing);
    tell("Note");
    EXPECT_EQ(heard(), QStringList{"show | Told | Note |  | -1"});
    EXPECT_EQ(cancelled, 1);
}

TEST_F(BusNoticeTest, TheNextServiceIsAskedAnewAndNeverByTheNumberOfTheLast) {
    for (const bool isQuestion : {true, false}) {
        if (isQuestion)
            wait("Note");
        else
            tell("Note");
        heard();
        service.disown(Service::name);
        heard();
        Service next(bus.connect());
        EXPECT_EQ(heardBy(next).size(), isQuestion ? 1 : 0);
        service.press(7);
        heard();
        EXPECT_EQ(cancelled, 0) << "who showed it last speaks no more";
        next.press(7);
        heardBy(next);
        EXPECT_EQ(std::exchange(cancelled, 0), isQuestion ? 1 : 0);
        tell("Mail");
        EXPECT_TRUE(heardBy(next).value(0).startsWith(isQuestion ? "replace 7" : "show | "));
        notice->withdraw();
        next.disown(Service::name);
        service.own(Service::name);
        heard();
    }
}

TEST_F(BusNoticeTest, SaysWhenTheServiceHasNoButtonsWhichItIsAskedOnce) {
    int unanswerable = 0;
    wait("Note");
    heard();
    EXPECT_EQ(service.questions, 0) << "nobody wants to know";
    notice->onUnanswerable = [&] { ++unanswerable; };
    for (const char* text : {"Note", "Mail"}) {
        wait(text);
        heard();
    }
    EXPECT_EQ(service.questions, 1);
    EXPECT_EQ(unanswerable, 0);

    service.disown(Service::name);
    heard();
    EXPECT_EQ(std::exchange(unanswerable, 0), 1) << "perhaps no other service comes";
    wait("Mail");
    heard();
    EXPECT_EQ(std::exchange(unanswerable, 0), 1);
    Service plain(bus.connect());
    plain.capabilities = {"body"};
    tell("Note");
    heardBy(plain);
    EXPECT_EQ(unanswerable, 0);
    wait("Note");
    heardBy(plain);
    EXPECT_EQ(unanswerable, 1);
    wait("Note");
    notice->withdraw();
    heardBy(plain);
    EXPECT_EQ(unanswerable, 1) << "nothing is there to be answered";

    // Nor is it without a bus.
    const PowerBus none = PowerBus::standIn("", bus.folder());
    BusNotice silent(none.connection());
    silent.onUnanswerable = [&] { ++unanswerable; };
    silent.show({.title = "A", .text = "B", .buttons = {{"c", "C"}}, .stays = true});
    EXPECT_EQ(unanswerable, 1) << "it is told later";
    settle({none.connection()});
    EXPECT_EQ(unanswerable, 2);
}

} // namespace
} // namespace velmorquit
