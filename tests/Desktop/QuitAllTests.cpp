#include "Desktop/DesktopStory.h"

#include <chrono>

namespace velmorquit {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

using QuitAll = DesktopStory;

TEST_F(QuitAll, StubbornOnesAreLeftOpenOrForced) {
    startProgram();
    Child& polite = openRude({"--class", "Polite", "--windows", "2"});
    Child& ignorant = openRude({"--class", "Ignorant", "--ignore"});
    Child& deaf = openRude({"--class", "Deaf", "--ignore", "--deaf"});
    Child& unaskable = openRude({"--class", "Unaskable", "--no-protocol"});
    Child& windowless = openRude({"--class", "Windowless", "--stay"});
    const auto leaving = beginQuitAll();
    awaitStubborn({"Ignorant", "Deaf", "Unaskable", "Windowless"});
    EXPECT_THAT(control({"status"}).text, HasSubstr("ancora in esecuzione, senza finestre"));
    EXPECT_EQ(control({"leave"}).status, 0);
    EXPECT_THAT(outcomeOf(*leaving), ends(1, HasSubstr("Finito: 1 app chiusa")));
    EXPECT_THAT(polite.output(), ContainsRegex("asked [0-9]+\nasked [0-9]+\n"));
    EXPECT_THAT(windowless.output(), HasSubstr("asked"));
    EXPECT_TRUE(windowless.isRunning()) << "it has not quit";
    EXPECT_THAT(names("stubborn"), IsEmpty());
    EXPECT_THAT(names("applications"), UnorderedElementsAre("Ignorant", "Deaf", "Unaskable"));

    const auto forcing = beginQuitAll();
    awaitStubborn({"Ignorant", "Deaf", "Unaskable"});
    const auto before = Clock::now();
    EXPECT_EQ(control({"force"}).status, 0);
    awaitEnd(deaf);
    EXPECT_GE(Clock::now() - before, 2s) << "they have time to obey";
    EXPECT_EQ(deaf.status(), 128 + SIGKILL);
    EXPECT_EQ(ignorant.status(), 128 + SIGTERM);
    EXPECT_THAT(outcomeOf(*forcing), ends(0, HasSubstr("Finito: 3 app chiuse")));
    EXPECT_THAT(unaskable.output(), Not(HasSubstr("asked")));
}

/// An editor with a text that nobody has saved.
class UnsavedLetter : public DesktopStory {
protected:
    static constexpr auto text = "The meeting is on Friday at ten.";

    UnsavedLetter() { write(letter, ""); }

    /// Types the text into the editor, in which the letter is open.
    static void writeText() {
        focus("mousepad");
        type(text);
        await("the mark of a text that isn't saved",
              [] { return !windows("--name", "\\*.*letter.*").empty(); });
    }
    void saveWhenAsked() const {
        await("the question", [] { return titleWithKeyboard() == "Save Changes\n"; });
        press({"alt+s"});
        await("the text in the file",
              [&] { return contents(letter).find(text) != std::string::npos; });
    }

    const std::filesystem::path letter = home() / "letter.txt";
};

// Nobody shows notices on this desktop.
TEST_F(UnsavedLetter, IsWaitedForAndItsQuestionKeepsTheKeyboardWhenThePanelOpensByItself) {
    startProgram();
    Child& terminal = openTerminal();
    Child& otherEditor = open({"l3afpad"});
    Child& editor = open({"mousepad", letter});
    writeText();
    const auto quitAll = beginQuitAll();
    awaitPanel();
    EXPECT_EQ(phase(), "waiting");
    EXPECT_THAT(names("stubborn"), ElementsAre("Mousepad"));
    EXPECT_EQ(status()["stubborn"][0]["reason"], "asking");
    EXPECT_TRUE(editor.isRunning());
    EXPECT_FALSE(otherEditor.isRunning() || terminal.isRunning());
    linger(1000); // until it would take Return and presses
    EXPECT_EQ(titleWithKeyboard(), "Save Changes\n");
    saveWhenAsked();
    EXPECT_THAT(outcomeOf(*quitAll), ends(0, AllOf(HasSubstr("Chiedo a 3 app di chiudersi"),
                                                   HasSubstr("Finito: 3 app chiuse"))));
    EXPECT_FALSE(editor.isRunning());
}

// The shell takes along what was started from it when its terminal closes, and an editor that is
// taken along loses its text.
TEST_F(UnsavedLetter, IsNotLostWithTheTerminalThatTheEditorWasStartedFrom) {
    startProgram();
    Child& terminal = openTerminal();
    focus("xterm");
    type("LC_ALL=C.UTF-8 mousepad letter.txt &\n");
    await("the editor", [] { return names("applications").size() == 2; });
    writeText();
    const auto quitAll = beginQuitAll();
    awaitStubborn({"Mousepad", "XTerm"});
    saveWhenAsked();
    await("the end of the editor", [] { return names("stubborn") == Words{"XTerm"}; });
    EXPECT_EQ(control({"leave"}).status, 0);
    EXPECT_THAT(outcomeOf(*quitAll), ends(1, HasSubstr("Finito: 1 app chiusa")));
    EXPECT_TRUE(terminal.isRunning());
}

} // namespace
} // namespace velmorquit
