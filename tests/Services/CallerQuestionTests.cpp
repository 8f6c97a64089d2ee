#include "Services/ControllerStory.h"
#include "Services/Remote/RemoteControl.h"

#include <map>
#include <utility>

namespace velmorquit {
namespace {

using Status = RemoteAnswer::Status;

/// A program in a sandbox, and a user who is asked about what it wants.
class CallerStory : public ControllerStory {
protected:
    void serve() {
        start();
        control = std::make_unique<RemoteControl>(*controller, actions, desktop.ports());
        control->callerQuestion().screen = {.ask =
                                                [this](const std::string& question,
                                                       const std::string& button,
                                                       std::function<void(bool)> answer) {
                                                    EXPECT_EQ(button, "Permetti");
                                                    questions.push_back(question);
                                                    give = std::move(answer);
                                                },
                                            .withdraw =
                                                [this] {
                                                    ++withdrawn;
                                                    if (give)
                                                        std::exchange(give, nullptr)(false);
                                                }};
        control->schedule().onAnswer = [this](const ActionAnswer& answer) { told = answer.text; };
        desktop.remote.caller = {.isConfined = true, .name = "org.example.Rude"};
    }
    Status ask(const std::string& verb, const std::vector<std::string>& arguments = {}) {
        return desktop.remote.give(verb, arguments).status;
    }
    void answer(bool isWanted) { std::exchange(give, nullptr)(isWanted); }

    ActionRunner actions{desktop.loop, desktop.kernel, desktop.formats};
    std::unique_ptr<RemoteControl> control;
    std::vector<std::string> questions;
    std::function<void(bool)> give;
    std::string told;
    int withdrawn = 0;
};

TEST_F(CallerStory, LooksAndHoldsUpAtOnceAndAsksForAllElse) {
    desktop.open("Note").ignoresAsking();
    serve();
    for (const char* verb : {"status", "show", "memory", "actions", "cancel"})
        EXPECT_EQ(ask(verb), Status::done) << verb;
    EXPECT_EQ(ask("action", {"memory"}), Status::done);
    EXPECT_EQ(ask("force"), Status::refused) << "there is nothing to ask about";
    EXPECT_EQ(ask("frobnicate"), Status::unknown);
    EXPECT_TRUE(questions.empty());

    EXPECT_EQ(ask("quitAll", {"shutDown"}), Status::asking);
    EXPECT_EQ(questions.back(), "«org.example.Rude», che gira in una sandbox, chiede di chiudere "
                                "tutte le app e poi spegnere il computer. Lo permetti?");
    desktop.advance(30s);
    EXPECT_TRUE(is<phases::Idle>(controller->phase)) << "nothing happens before the answer";
    answer(true);
    desktop.advance(7s);
    ASSERT_TRUE(is<phases::Waiting>(controller->phase));

    EXPECT_EQ(ask("force"), Status::asking);
    EXPECT_EQ(ask("leave"), Status::done);
    EXPECT_FALSE(controller->isRunning());
    answer(true);
    EXPECT_EQ(told, "Nel frattempo le cose sono cambiate: non faccio niente.")
        << "what it was about has gone";
    for (const auto& [verb, arguments] :
         std::vector<std::pair<std::string, std::vector<std::string>>>{
             {"schedule", {"minutes", "5", "none"}},
             {"eject", {}},
             {"forget", {}},
             {"exclude", {"Note"}},
             {"include", {"Note"}},
             {"action", {"quit-all"}},
             {"action", {"schedule-quit", "then=nothing"}}}) {
        EXPECT_EQ(ask(verb, arguments), Status::asking) << verb;
        give = nullptr;
        desktop.advance(CallerQuestion::patience + CallerQuestion::longestRest);
    }

    const auto quits = [&](const std::string& name) {
        return ask("quit", {name}) == Status::asking ? questions.back() : std::string();
    };
    EXPECT_EQ(quits("Nobody"), "") << "there is nothing to ask about";
    EXPECT_EQ(quits("no"), "«org.example.Rude», che gira in una sandbox, chiede di chiudere Note. "
                           "Lo permetti?");
    desktop.open("Nodes");
    controller->refresh();
    answer(true);
    EXPECT_EQ(told, "Nel frattempo le cose sono cambiate: non faccio niente.")
        << "the name means another one now";

    desktop.remote.caller = {};
    EXPECT_EQ(ask("quitAll"), Status::done) << "whoever is not shut in";
}

TEST_F(CallerStory, AsksOneQuestionAtATimeAndLessAndLessOftenAfterANo) {
    desktop.open("Note").ignoresAsking();
    serve();
    desktop.remote.caller.name.clear();
    EXPECT_EQ(ask("quitAll"), Status::asking);
    EXPECT_EQ(questions.back(),
              "Un programma sconosciuto chiede di chiudere tutte le app. Lo permetti?");
    for (int call = 0; call < 1000; ++call)
        EXPECT_EQ(ask("quitAll", {"restart"}), Status::refused);
    EXPECT_EQ(questions.size(), 1U);

    // Nobody answers: that is a no, and what comes of the question later is of no account.
    auto late = std::move(give);
    desktop.advance(CallerQuestion::patience);
    EXPECT_EQ(withdrawn, 1);
    EXPECT_EQ(ask("quitAll"), Status::refused);
    late(true);
    EXPECT_TRUE(is<phases::Idle>(controller->phase));

    // A program that asks every second for a day.
    for (int second = 0; second < 24 * 60 * 60; ++second) {
        desktop.advance(1s);
        if (ask("quitAll") == Status::asking)
            answer(false);
    }
    EXPECT_LE(questions.size(), 31U);
    EXPECT_GE(questions.size(), 25U);
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
}

} // namespace
} // namespace velmorquit
