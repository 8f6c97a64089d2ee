#include "Desktop/DesktopStory.h"

#include "support/Waiting.h"

#include <chrono>

namespace velmorquit {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Clock = Watch::Clock;

using QuitAll = DesktopStory;

TEST_F(QuitAll, CleanApplicationsAreClosedAndNoneIsStubborn) {
    startProgram();
    Watch watch;
    Child& editor = open({"mousepad"});
    Child& otherEditor = open({"l3afpad"});
    Child& terminal = openTerminal();

    const Outcome answer = control({"quit-all"});
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("Chiedo a 3 app di chiudersi"));
    EXPECT_THAT(answer.text, HasSubstr("Finito: 3 app chiuse"));
    for (Child* application : {&editor, &otherEditor, &terminal})
        EXPECT_FALSE(application->isRunning());
    await("the end", [&] { return watch.hasHeard("phase done 3"); });
    EXPECT_FALSE(watch.hasHeard("phase waiting"));
    EXPECT_FALSE(watch.hasHeard("event stubbornApps"));
    EXPECT_THAT(names("applications"), IsEmpty());
}

TEST_F(UnsavedLetter, IsWaitedForUntilItsQuestionIsAnswered) {
    write(letter(), "");
    startProgram();
    Watch watch;
    Child& editor = open({"mousepad", letter()});
    open({"l3afpad"});
    writeText();

    const auto before = Clock::now();
    const auto quitAll = beginQuitAll();
    await("the end of the grace period", [&] { return watch.hasHeard("stubborn Mousepad"); });
    EXPECT_GE(*watch.timeOf("stubborn Mousepad") - before, 6s);
    ASSERT_TRUE(watch.hasHeard("gone L3afpad"));
    EXPECT_LT(*watch.timeOf("gone L3afpad"), *watch.timeOf("stubborn Mousepad"));
    EXPECT_THAT(names("stubborn"), ElementsAre("Mousepad"));
    EXPECT_EQ(status()["stubborn"][0]["reason"], "asking");
    EXPECT_TRUE(editor.isRunning());

    answerWithSave();
    const Outcome answer = outcomeOf(*quitAll);
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("Finito: 2 app chiuse"));
    EXPECT_FALSE(editor.isRunning());
    EXPECT_THAT(contents(letter()), HasSubstr(text));
}

// Nobody shows notices on this desktop.
TEST_F(UnsavedLetter, KeepsTheKeyboardForItsQuestionWhenThePanelOpensByItself) {
    write(letter(), "");
    startProgram();
    Child& editor = open({"mousepad", letter()});
    writeText();
    const auto quitAll = beginQuitAll();
    await("the panel", [] {
        return run({"xdotool", "search", "--onlyvisible", "--name", "^Velmor Quit$"}).status == 0;
    });
    EXPECT_EQ(phase(), "waiting");
    linger(1000); // until it would take Return and presses
    EXPECT_EQ(run({"xdotool", "getactivewindow", "getwindowname"}).text, "Save Changes\n");
    run({"xdotool", "key", "alt+s"});
    await("the end of the editor", [&] { return !editor.isRunning(); });
    EXPECT_EQ(outcomeOf(*quitAll).status, 0);
    EXPECT_THAT(contents(letter()), HasSubstr(text));
}

TEST_F(QuitAll, ForcedApplicationsHaveTwoSecondsToObey) {
    startProgram();
    Child& ignorant = openRude({"--class", "Ignorant", "--ignore"});
    Child& deaf = openRude({"--class", "Deaf", "--ignore", "--deaf"});
    const auto quitAll = beginQuitAll();
    awaitStubborn({"Ignorant", "Deaf"});

    const auto before = Clock::now();
    EXPECT_EQ(control({"force"}).status, 0);
    await("the end of the deaf one", [&] { return !deaf.isRunning(); });
    EXPECT_GE(Clock::now() - before, 2s);
    EXPECT_EQ(deaf.status(), 128 + SIGKILL);
    EXPECT_EQ(ignorant.status(), 128 + SIGTERM);
    const Outcome answer = outcomeOf(*quitAll);
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("Finito: 2 app chiuse"));
}

TEST_F(QuitAll, AllWindowsOfAnApplicationAreAsked) {
    startProgram();
    Child& application = openRude({"--windows", "2"});
    EXPECT_THAT(names("applications"), ElementsAre("Rude"));

    const Outcome answer = control({"quit-all"});
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("Finito: 1 app chiusa"));
    EXPECT_FALSE(application.isRunning());
    std::istringstream said(application.output());
    std::string ready, process, first, second;
    said >> ready >> process >> first >> second;
    EXPECT_THAT(application.output(), EndsWith("\nasked " + first + "\nasked " + second + "\n"));
}

TEST_F(QuitAll, OneThatCannotBeAskedIsLeftOpen) {
    startProgram();
    Child& application = openRude({"--no-protocol"});
    const auto quitAll = beginQuitAll();
    awaitStubborn({"Rude"});

    EXPECT_EQ(control({"leave"}).status, 0);
    const Outcome answer = outcomeOf(*quitAll);
    EXPECT_EQ(answer.status, 1) << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("Finito: nessuna app chiusa"));
    EXPECT_TRUE(application.isRunning());
    EXPECT_THAT(application.output(), Not(HasSubstr("asked")));
    EXPECT_THAT(names("applications"), ElementsAre("Rude"));
    EXPECT_THAT(names("stubborn"), IsEmpty());
}

TEST_F(QuitAll, OneThatLivesOnWithoutWindowsHasNotQuit) {
    startProgram();
    Child& application = openRude({"--stay"});
    const auto quitAll = beginQuitAll();
    awaitStubborn({"Rude"});
    EXPECT_THAT(control({"status"}).text, HasSubstr("ancora in esecuzione, senza finestre"));
    EXPECT_THAT(application.output(), HasSubstr("asked"));
    EXPECT_TRUE(application.isRunning());
    EXPECT_THAT(names("applications"), IsEmpty());

    EXPECT_EQ(control({"force"}).status, 0);
    EXPECT_EQ(outcomeOf(*quitAll).status, 0);
    EXPECT_FALSE(application.isRunning());
}

TEST_F(QuitAll, TheEndOfTheProgramEndsTheWait) {
    startProgram();
    Child& application = openRude({"--ignore"});
    const auto quitAll = beginQuitAll();
    killProgram();
    const Outcome answer = outcomeOf(*quitAll);
    EXPECT_EQ(answer.status, 3);
    EXPECT_THAT(answer.text, EndsWith("\nvelmorctl: Velmor Quit è terminata.\n"));
    EXPECT_TRUE(application.isRunning());
}

} // namespace
} // namespace velmorquit
