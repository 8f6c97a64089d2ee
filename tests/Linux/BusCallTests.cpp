#include "Linux/Bus/BusCall.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <memory>

namespace velmorquit {
namespace {

class BusCallTest : public testing::Test {
protected:
    BusCallTest() {
        service.isSlow = true;
        service.says[""] = 7U;
    }

    void ask(BusCall& call) {
        call.send(own, QDBusMessage::createMethodCall("org.test.Slow", "/", "org.test", "Ask"),
                  [this](const QDBusMessage& answer) { answers << answer.arguments().value(0); });
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

TEST_F(BusCallTest, OnlyTheLastQuestionIsAnsweredUnlessItIsDropped) {
    BusCall call;
    ask(call);
    ask(call);
    answerAll();
    EXPECT_EQ(answers, QVariantList{7U});
    ask(call);
    call.drop();
    answerAll();
    EXPECT_EQ(answers.size(), 1);
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
