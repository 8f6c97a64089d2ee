#include "Linux/Bus/BusCall.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <optional>

namespace velmorquit {
namespace {

class BusCallTest : public testing::Test {
protected:
    BusCallTest() {
        service.isSlow = true;
        service.says[""] = 7U;
    }

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
    void answerAll() {
        settleAll();
        service.answer();
        settleAll();
    }

    PrivateBus bus;
    QDBusConnection own = bus.connect();
    StandInService service{bus.connect(), {"org.test.Slow"}};
    QVariantList answers;
};

TEST_F(BusCallTest, OnlyTheLastQuestionIsAnswered) {
    BusCall call;
    ask(call);
    ask(call);
    settleAll();
    EXPECT_EQ(service.pending.size(), 2);
    EXPECT_TRUE(call.isOpen());
    answerAll();
    EXPECT_EQ(answers, QVariantList{7U});
    EXPECT_FALSE(call.isOpen());
    ask(call);
    call.drop();
    std::optional<BusCall> gone(std::in_place);
    ask(*gone);
    gone.reset();
    answerAll();
    EXPECT_EQ(answers.size(), 1);

    // What is of another kind or late is an error.
    ask(call, {.signature = "s"});
    answerAll();
    EXPECT_EQ(answers.last(), "org.freedesktop.DBus.Error.InvalidSignature");
    ask(call, {.patience = BusTerms::Patience(50)});
    EXPECT_TRUE(waitUntil([&] { return answers.size() == 3; }));
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

} // namespace
} // namespace velmorquit
