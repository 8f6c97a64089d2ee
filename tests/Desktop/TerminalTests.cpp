#include "Desktop/DesktopStory.h"

namespace velmorquit {
namespace {

using Terminal = DesktopStory;

TEST_F(Terminal, TheOneThatStartedTheProgramCanBeQuit) {
    Child& terminal = openTerminal();
    focus("xterm");
    type("velmorquit &\n");
    await("an answer of the program", [] { return control({"status"}).status == 0; });
    EXPECT_THAT(names("applications"), ElementsAre("XTerm"));
    focus("xterm");
    type("velmorctl quit-all > log\n");
    awaitEnd(terminal);
    await("the end of its shell", [] { return !isAlive(std::stoi(contents(home() / "shell"))); });
    await("the last line of velmorctl", [] {
        return contents(home() / "log").find("Finito: 1 app chiusa") != std::string::npos;
    });
    EXPECT_THAT(names("applications"), IsEmpty());
}

// A terminal may ask about any command in its foreground, so that velmorctl isn't one.
TEST_F(Terminal, WithAJobIsNotAskedAndHasItsPromptBackDuringTheRun) {
    startProgram();
    Child& terminal = openTerminal();
    linger(2100);
    focus("xterm");
    type("sleep 1000 &\n");
    type("velmorctl quit-all >log 2>&1; echo poweroff >next\n");
    await("the run", [] { return phase() == "quitting"; });
    const auto awaitStatus = [](const std::string& expected) {
        await("the status", [&] { return contents(home() / "status") == expected + '\n'; });
    };
    type("echo $? >status\n");
    awaitStatus("130");
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
    Child& rude = openRude({"--ignore"});
    focus("xterm");
    type("velmorctl quit-all --timeout 0.5; echo $? >status\n");
    awaitStatus("4");
    EXPECT_EQ(control({"leave"}).status, 0);

    // With the job nothing is lost any more.
    EXPECT_EQ(control({"include", "XTerm"}).status, 0);
    type("kill %1; cat\n");
    linger(500);
    const auto quitAll = beginQuitAll();
    awaitStubborn({"XTerm", "Rude"});
    focus("xterm");
    EXPECT_EQ(control({"leave"}).status, 0);
    EXPECT_EQ(outcomeOf(*quitAll).status, 1);
    std::filesystem::remove(home() / "shell");
    press({"ctrl+d"});
    await("the prompt", [] { return !contents(home() / "shell").empty(); });
    rude.send(SIGKILL);
    EXPECT_THAT(control({"quit-all"}), ends(0, HasSubstr("Finito: 1 app chiusa")));
    EXPECT_FALSE(terminal.isRunning());
}

} // namespace
} // namespace velmorquit
