#include "Services/ControllerStory.h"
#include "Services/RunAnswers.h"

#include <utility>

namespace velmorquit {
namespace {

using RunAnswers::Moment;
using RunAnswers::Word;

struct MomentStory {
    Moment moment;
    /// Brings a run that asks A, and that the computer is switched off after, to that moment.
    void (*arrange)(SimulatedDesktop& desktop);
    Duration after;
    /// Words that are taken then, beside those that always are.
    std::string taken;
    /// What the answer to `leave` says to use instead; empty where there is nothing to end.
    const char* instead;
};

constexpr auto nothing = [](SimulatedDesktop&) {};
constexpr auto backUp = [](SimulatedDesktop& desktop) {
    desktop.preferences.set("backupFirst", true);
    desktop.backupTool.configure();
};

const MomentStory stories[]{
    {Moment::idle, nothing, 1min, "confirm quitAll.none anyway.1 reopen ", ""},
    {Moment::quitting, nothing, 0s, "leave ", ""},
    {Moment::waiting, [](SimulatedDesktop& desktop) { desktop.open("Editor").ignoresAsking(); }, 7s,
     "leave force askAgain ", ""},
    {Moment::backingUp, backUp, 1s, "backup.skip backup.cancel ", "velmorctl backup skip"},
    {Moment::backupFailed,
     [](SimulatedDesktop& desktop) {
         backUp(desktop);
         desktop.backupTool.launchError = "no such tool";
     },
     1s, "backup.continue backup.stop ", "velmorctl backup continue"},
    {Moment::ejecting,
     [](SimulatedDesktop& desktop) {
         desktop.preferences.set("ejectDrives", true);
         desktop.volumes.mountStick("one", 3);
     },
     1s, "", "velmorctl cancel"},
    {Moment::done, nothing, 4s, "confirm quitAll.none anyway.1 reopen ", ""},
    {Moment::ending, nothing, 1s, "confirm quitAll.none anyway.1 reopen ", "velmorctl cancel"},
};

void PrintTo(const MomentStory& story, std::ostream* stream) { *stream << story.taken; }

class EveryMoment : public ControllerStory, public testing::WithParamInterface<MomentStory> {};

TEST_P(EveryMoment, TakesTheWordsThatMakeSenseAndSaysWhatDoes) {
    const MomentStory& story = GetParam();
    desktop.open("A");
    story.arrange(desktop);
    run(PowerAction::shutDown, story.after);
    const Moment moment = RunAnswers::momentOf(*controller, desktop.loginWindow.state);
    ASSERT_EQ(moment, story.moment);
    std::string taken;
    for (const std::string word : {"leave", "force", "askAgain", "backup.skip", "backup.cancel",
                                   "backup.continue", "backup.stop", "confirm", "quitAll.none",
                                   "anyway.1", "reopen", "cancel", "postpone.5", "status"}) {
        const auto dot = word.find('.');
        RemoteCommand command{word.substr(0, dot), {}};
        if (dot != std::string::npos)
            command.arguments = {word.substr(dot + 1)};
        if (!RunAnswers::refusal(command, moment))
            taken += word + ' ';
    }
    EXPECT_EQ(taken, story.taken + "cancel postpone.5 status ");
    for (const Word word : {Word::leaveNamed, Word::showNamed})
        EXPECT_EQ(RunAnswers::isTaken(word, moment), moment == Moment::waiting);
    EXPECT_THAT(RunAnswers::refusal({"leave", {}}, moment).value_or(""),
                testing::HasSubstr(story.instead));
}

INSTANTIATE_TEST_SUITE_P(, EveryMoment, testing::ValuesIn(stories), [](const auto& info) {
    return "Moment" + std::to_string(static_cast<int>(info.param.moment));
});

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

} // namespace
} // namespace velmorquit
