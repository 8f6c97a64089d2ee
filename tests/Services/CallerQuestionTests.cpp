#include "Services/RemoteStory.h"

namespace velmorquit {
namespace {

using testing::Not;
using testing::StartsWith;

/// A program in a sandbox, and a user who is asked about what it wants.
class CallerStory : public RemoteStory {
protected:
    void begin() {
        serve();
        control->callerQuestion().screen = {.ask =
                                                [this](const std::string& question,
                                                       const std::string& button,
                                                       std::function<void(bool)> answer) {
                                                    EXPECT_EQ(button, "Permetti");
                                                    questions.push_back(question);
                                                    decide = std::move(answer);
                                                },
                                            .withdraw =
                                                [this] {
                                                    desktop.write("withdrawn");
                                                    if (decide)
                                                        std::exchange(decide, nullptr)(false);
                                                }};
        desktop.remote.caller = {.isConfined = true, .name = "org.example.Rude"};
        desktop.startLog();
    }
    void decideNow(bool isWanted) { std::exchange(decide, nullptr)(isWanted); }

    std::vector<std::string> questions;
    std::function<void(bool)> decide;
};

TEST_F(CallerStory, LooksAndHoldsUpAtOnceAndAsksForAllElse) {
    desktop.open("Note").ignoresAsking();
    begin();
    for (const char* verb : {"status", "show", "cancel"})
        EXPECT_EQ(desktop.remote.give(verb).status, RemoteAnswer::Status::done) << verb;
    EXPECT_EQ(give("action", {"memory"}), "");
    EXPECT_THAT(give("force"), StartsWith("refused")) << "there is nothing to ask about";
    EXPECT_EQ(give("frobnicate"), "unknown");
    EXPECT_TRUE(questions.empty());

    EXPECT_EQ(give("quitAll", {"shutDown"}), "asks");
    EXPECT_EQ(questions.back(), "«org.example.Rude», che gira in una sandbox, chiede di chiudere "
                                "tutte le app e poi spegnere il computer. Lo permetti?");
    EXPECT_THAT(after(30s), Not(testing::HasSubstr("quit"))) << "nothing comes before the answer";
    decideNow(true);
    after(7s);
    ASSERT_TRUE(is<phases::Waiting>(controller->phase));

    const char* const changed = "0.00 shows: Nel frattempo le cose sono cambiate: non faccio "
                                "niente.\n";
    EXPECT_EQ(give("force"), "asks");
    EXPECT_EQ(give("leave"), "");
    EXPECT_FALSE(controller->isRunning());
    decideNow(true);
    EXPECT_THAT(after(0s), StartsWith(changed)) << "what it was about has gone";
    EXPECT_EQ(give("action", {"quit-all"}), "asks");
    decide = nullptr;
    desktop.advance(CallerQuestion::patience + CallerQuestion::longestRest);

    EXPECT_THAT(give("quit", {"Nobody"}), StartsWith("refused")) << "there is nothing to ask about";
    EXPECT_EQ(give("quit", {"no"}), "asks");
    EXPECT_EQ(questions.back(), "«org.example.Rude», che gira in una sandbox, chiede di chiudere "
                                "Note. Lo permetti?");
    desktop.open("Nodes");
    controller->refresh();
    desktop.startLog();
    decideNow(true);
    EXPECT_EQ(after(0s), changed) << "the name means another one now";

    desktop.remote.caller = {};
    EXPECT_EQ(give("quitAll"), "") << "whoever is not shut in";
}

TEST_F(CallerStory, AsksOneQuestionAtATimeAndLessAndLessOftenAfterANo) {
    desktop.open("Note").ignoresAsking();
    begin();
    desktop.remote.caller.name.clear();
    EXPECT_EQ(give("quitAll"), "asks");
    EXPECT_EQ(questions.back(),
              "Un programma sconosciuto chiede di chiudere tutte le app. Lo permetti?");
    for (int call = 0; call < 1000; ++call)
        EXPECT_THAT(give("quitAll", {"restart"}), StartsWith("refused"));
    EXPECT_EQ(questions.size(), 1U);

    // Nobody answers: that is a no, and what comes of the question later is of no account.
    auto late = std::move(decide);
    EXPECT_THAT(after(CallerQuestion::patience), testing::EndsWith(" withdrawn\n"));
    EXPECT_THAT(give("quitAll"), StartsWith("refused"));
    late(true);

    // A program that asks every second for a day.
    for (int second = 0; second < 24 * 60 * 60; ++second) {
        desktop.advance(1s);
        if (give("quitAll") == "asks")
            decideNow(false);
    }
    EXPECT_LE(questions.size(), 31U);
    EXPECT_GE(questions.size(), 25U);
    EXPECT_TRUE(is<phases::Idle>(controller->phase));
}

} // namespace
} // namespace velmorquit
