#include "Linux/Bus/BusCall.h"
#include "Linux/Bus/BusName.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <optional>

namespace velmorquit {
namespace {

/// Keeps what it is asked until it is to answer.
class Slow final : public StandInService {
public:
    using StandInService::StandInService;

    void hear(const QDBusMessage& call) override { asked << call; }
    void answer() {
        for (const QDBusMessage& call : std::exchange(asked, {}))
            bus.send(call.createReply(7U));
    }

    QList<QDBusMessage> asked;
};

class BusCallTest : public testing::Test {
protected:
    void ask(BusCall& call, BusTerms terms = {}) {
        call.send(
            own, QDBusMessage::createMethodCall("org.test.Slow", "/", "org.test", "Ask"),
            [this](const QDBusMessage& answer) {
                answers << (answer.type() == QDBusMessage::ReplyMessage
                                ? answer.arguments().value(0)
                                : answer.errorName());
            },
            terms);
    }
    void settleAll() { settle({own, service.bus}); }

    PrivateBus bus;
    QDBusConnection own = bus.connect();
    Slow service{bus.connect(), {"org.test.Slow"}};
    QVariantList answers;
};

TEST_F(BusCallTest, OnlyTheLastQuestionIsAnswered) {
    BusCall call;
    ask(call);
    ask(call);
    settleAll();
    ASSERT_EQ(service.asked.size(), 2);
    EXPECT_TRUE(call.isOpen());
    service.answer();
    settleAll();
    EXPECT_EQ(answers, QVariantList{7U});
    EXPECT_FALSE(call.isOpen());
    ask(call);
    call.drop();
    std::optional<BusCall> gone(std::in_place);
    ask(*gone);
    gone.reset();
    settleAll();
    service.answer();
    settleAll();
    EXPECT_EQ(answers.size(), 1);
}

TEST_F(BusCallTest, WhatIsLateOrOfAnotherKindIsAnError) {
    BusCall call;
    ask(call, {.signature = "s"});
    settleAll();
    service.answer();
    settleAll();
    EXPECT_EQ(answers, QVariantList{"org.freedesktop.DBus.Error.InvalidSignature"});
    ask(call, {.patience = BusTerms::Patience(50)});
    EXPECT_TRUE(waitUntil([&] { return answers.size() == 2; }));
    EXPECT_FALSE(call.isOpen());
}

TEST_F(BusCallTest, AnAnswerMayAskAgainAndMayEndWhatAsked) {
    auto calls = std::make_unique<BusCalls>();
    int told = 0;
    calls->send(own, busQuestion("ListNames"), [&](const QDBusMessage&) {
        ++told;
        calls->send(own, busQuestion("ListNames"), [&](const QDBusMessage&) {
            ++told;
            calls.reset();
        });
        calls->drop();
        calls->send(own, busQuestion("ListNames"), [&](const QDBusMessage&) {
            told += 10;
            calls.reset();
        });
    });
    EXPECT_TRUE(waitUntil([&] { return !calls; }));
    settleAll();
    EXPECT_EQ(told, 11);
}

TEST_F(BusCallTest, ANameIsFollowedUntilTheBusGoes) {
    QStringList owners;
    const BusName name(own, "org.test.Slow", [&](const QString& owner) { owners << owner; });
    settle({own});
    service.disown("org.test.Slow");
    const Slow next(bus.connect(), {"org.test.Slow"});
    settle({own, next.bus});
    EXPECT_EQ(owners, (QStringList{"", next.bus.baseService()}));
    bus.stop();
    EXPECT_TRUE(waitUntil([&] { return owners.size() == 3; }));
    EXPECT_EQ(owners.last(), "");
}

} // namespace
} // namespace velmorquit
