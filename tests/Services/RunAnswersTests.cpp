#include "Services/ControllerStory.h"
#include "Services/RunAnswers.h"

#include <array>
#include <utility>

namespace velmorquit {
namespace {

using RunAnswers::Moment;
using RunAnswers::Word;

struct MomentStory {
    const char* name;
    Moment moment;
    /// Brings a run that asks A, and that the computer is switched off after, to that moment.
    void (*arrange)(SimulatedDesktop& desktop);
    Duration after;
    /// Words that are taken then, beside those that always are.
    std::string_view taken;
    /// What the answer to `leave` says to use instead; empty where there is nothing to end.
    std::string_view instead;
};

constexpr auto nothing = [](SimulatedDesktop&) {};
constexpr auto backUp = [](SimulatedDesktop& desktop) {
    desktop.preferences.set("backupFirst", true);
    desktop.backupTool.configure();
};

const std::array<MomentStory, 8> stories{{
    {"Idle", Moment::idle, nothing, 1min, "confirm quitAll anyway reopen", ""},
    {"Quitting", Moment::quitting, nothing, 0s, "leave", ""},
    {"Waiting", Moment::waiting,
     [](SimulatedDesktop& desktop) { desktop.open("Editor").ignoresAsking(); }, 7s,
     "leave force askAgain", ""},
    {"BackingUp", Moment::backingUp, backUp, 1s, "skip backup-cancel", "velmorctl backup skip"},
    {"BackupFailed", Moment::backupFailed,
     [](SimulatedDesktop& desktop) {
         backUp(desktop);
         desktop.backupTool.launchError = "no such tool";
     },
     1s, "continue stop", "velmorctl backup continue"},
    {"Ejecting", Moment::ejecting,
     [](SimulatedDesktop& desktop) {
         desktop.preferences.set("ejectDrives", true);
         desktop.volumes.mountStick("one", 3);
     },
     1s, "", "velmorctl cancel"},
    {"Done", Moment::done, nothing, 4s, "confirm quitAll anyway reopen", ""},
    {"Ending", Moment::ending, nothing, 1s, "confirm quitAll anyway reopen", "velmorctl cancel"},
}};

class EveryMoment : public ControllerStory, public testing::WithParamInterface<MomentStory> {};

TEST_P(EveryMoment, TakesTheWordsThatMakeSenseAndSaysWhatDoes) {
    const MomentStory& story = GetParam();
    desktop.open("A");
    story.arrange(desktop);
    start().quitAll(PowerAction::shutDown);
    desktop.advance(story.after);
    const Moment moment = RunAnswers::momentOf(*controller, desktop.loginWindow.state);
    ASSERT_EQ(moment, story.moment) << desktop.log();
    const std::array<std::pair<std::string, RemoteCommand>, 11> commands{{
        {"leave", {"leave", {}}},
        {"force", {"force", {}}},
        {"askAgain", {"askAgain", {}}},
        {"skip", {"backup", {"skip"}}},
        {"backup-cancel", {"backup", {"cancel"}}},
        {"continue", {"backup", {"continue"}}},
        {"stop", {"backup", {"stop"}}},
        {"confirm", {"confirm", {}}},
        {"quitAll", {"quitAll", {"none"}}},
        {"anyway", {"anyway", {"1"}}},
        {"reopen", {"reopen", {}}},
    }};
    for (const auto& [word, command] : commands) {
        const bool isTaken = story.taken.find(word) != std::string_view::npos;
        EXPECT_EQ(!RunAnswers::refusal(command, moment), isTaken) << word;
    }
    for (const RemoteCommand& always :
         {RemoteCommand{"cancel", {}}, RemoteCommand{"postpone", {"5"}},
          RemoteCommand{"status", {}}})
        EXPECT_FALSE(RunAnswers::refusal(always, moment)) << always.verb;
    for (const Word word : {Word::leaveNamed, Word::showNamed})
        EXPECT_EQ(RunAnswers::isTaken(word, moment), moment == Moment::waiting);
    const std::string why = RunAnswers::refusal({"leave", {}}, moment).value_or("");
    EXPECT_NE(why.find(story.instead), std::string::npos) << why;
}

TEST_F(ControllerStory, WhatComesTooLateIsNotAccepted) {
    start();
    const Moment moment = RunAnswers::momentOf(*controller, {.stage = EndState::Stage::underWay});
    EXPECT_TRUE(RunAnswers::refusal({"cancel", {}}, moment));
    EXPECT_FALSE(RunAnswers::refusal({"quitAll", {"none"}}, moment));
    EXPECT_FALSE(RunAnswers::isTaken(Word::endAnyway, moment));
    controller->quitAll(PowerAction::none);
    EXPECT_EQ(RunAnswers::momentOf(*controller, {.stage = EndState::Stage::waiting}),
              Moment::quitting);
}

INSTANTIATE_TEST_SUITE_P(, EveryMoment, testing::ValuesIn(stories),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace velmorquit
