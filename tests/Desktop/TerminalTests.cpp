#include "Desktop/DesktopStory.h"
#include "support/Waiting.h"

#include <algorithm>
#include <filesystem>

namespace velmorquit {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using testing::UnorderedElementsAre;

using Terminal = DesktopStory;

TEST_F(Terminal, TheOneThatStartedTheProgramCanBeQuit) {
    Child& terminal = openTerminal();
    const pid_t itsShell = shell();
    focus("xterm");
    type("velmorquit &\n");
    await("an answer of the program", [] { return control({"status"}).status == 0; });
    EXPECT_THAT(names("applications"), ElementsAre("XTerm"));

    focus("xterm");
    type("velmorctl quit-all > log\n");
    await("the end of the terminal", [&] { return !terminal.isRunning() && !isAlive(itsShell); });
    await("the last line of velmorctl", [] {
        return contents(home() / "log").find("Finito: 1 app chiusa") != std::string::npos;
    });
    EXPECT_THAT(names("applications"), ElementsAre());
    Child& next = openRude();
    awaitListed(next);
    EXPECT_EQ(control({"quit-all"}).status, 0);
    EXPECT_FALSE(next.isRunning());
}

TEST_F(Terminal, WithAJobInTheForegroundIsNotAsked) {
    startProgram();
    Child& terminal = openTerminal();
    write(home() / "work", "#!/bin/sh\necho $$ >job\nexec sleep 1000\n");
    std::filesystem::permissions(home() / "work", std::filesystem::perms::owner_all);
    const auto job = [] {
        const std::string number = contents(home() / "job");
        return number.ends_with('\n') ? std::stoi(number) : 0;
    };
    focus("xterm");
    type("./work\n");
    await("the job", [&] { return isAlive(job()); });

    const auto quitAll = beginQuitAll();
    awaitStubborn({"XTerm"});
    EXPECT_EQ(control({"leave"}).status, 0);
    EXPECT_EQ(outcomeOf(*quitAll).status, 1);
    EXPECT_TRUE(terminal.isRunning());
    EXPECT_TRUE(isAlive(job()));

    // Nothing is lost any more when the job is over.
    std::filesystem::remove(home() / "shell");
    ::kill(job(), SIGTERM);
    await("the prompt", [] { return shell() > 0; });
    const Outcome second = control({"quit-all"});
    EXPECT_EQ(second.status, 0) << second.text;
    EXPECT_FALSE(terminal.isRunning());
}

// A terminal may ask about any command in its foreground, so that velmorctl isn't one.
TEST_F(Terminal, WithAJobInTheBackgroundIsNotAskedAndHasItsPromptBackDuringTheRun) {
    startProgram();
    Child& terminal = openTerminal();
    linger(2100);
    focus("xterm");
    type("sleep 1000 &\n");
    type("velmorctl quit-all >log 2>&1; echo poweroff >next\n");
    await("the run", [] { return phase() == "quitting"; });
    type("echo $? >status\n");
    await("the prompt", [] { return contents(home() / "status") == "130\n"; });
    EXPECT_EQ(contents(home() / "next"), "") << "that was to come after the run";
    awaitStubborn({"XTerm"});
    EXPECT_TRUE(terminal.isRunning());
    EXPECT_EQ(control({"leave"}).status, 0);
    await("the last line of velmorctl", [] {
        return contents(home() / "log").find("Finito: nessuna app chiusa") != std::string::npos;
    });
    EXPECT_THAT(contents(home() / "log"), StartsWith("velmorctl: anche questo terminale"));

    // Where the terminal isn't asked the shell waits, and is told how it ended.
    EXPECT_EQ(control({"exclude", "XTerm"}).status, 0);
    Child& application = openRude({"--ignore"});
    focus("xterm");
    type("velmorctl quit-all --timeout 0.5; echo $? >status\n");
    await("the status", [] { return contents(home() / "status") == "4\n"; });
    type("velmorctl watch\n");
    linger(300);
    run({"xdotool", "key", "ctrl+c"});
    type("echo $? >status\n");
    await("the status", [] { return contents(home() / "status") == "130\n"; });
    EXPECT_TRUE(application.isRunning());
}

// The shell takes along what was started from it when its terminal closes, and an editor that is
// taken along loses its text.
TEST_F(UnsavedLetter, IsNotLostWithTheTerminalThatTheEditorWasStartedFrom) {
    write(letter(), "");
    startProgram();
    Child& terminal = openTerminal();
    focus("xterm");
    type("LC_ALL=C.UTF-8 mousepad letter.txt &\n");
    await("the editor", [] { return std::ranges::count(names("applications"), "Mousepad") == 1; });
    writeText();

    const auto quitAll = beginQuitAll();
    awaitStubborn({"Mousepad", "XTerm"});
    answerWithSave();
    await("the end of the editor",
          [] { return std::ranges::count(names("stubborn"), "Mousepad") == 0; });
    EXPECT_EQ(control({"leave"}).status, 0);
    const Outcome answer = outcomeOf(*quitAll);
    EXPECT_EQ(answer.status, 1) << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("Finito: 1 app chiusa"));
    EXPECT_THAT(contents(letter()), HasSubstr(text));
    EXPECT_TRUE(terminal.isRunning());
}

} // namespace
} // namespace velmorquit
