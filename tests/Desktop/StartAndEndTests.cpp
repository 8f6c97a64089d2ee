#include "Desktop/DesktopStory.h"

#include <sstream>

namespace velmorquit {
namespace {

using Start = DesktopStory;

TEST_F(Start, ASecondTimeShowsThePanelOfTheFirstAndLeavesItsRunAlone) {
    std::filesystem::remove(preferencesFile());
    startProgram();
    awaitPanel();
    killProgram();
    startProgram();
    linger(1000);
    EXPECT_FALSE(isPanelShown()) << "by itself it opens the first time only";
    openRude({"--ignore"});
    const auto quitAll = beginQuitAll();
    EXPECT_THAT(run({VELMORQUIT, "-style", "fusion", "-session", "a_b", "--foo", "-name", "x"}),
                ends(0, "Velmor Quit: argomento sconosciuto, lo ignoro: --foo (velmorquit --help)\n"
                        "Velmor Quit: è già in esecuzione\n"));
    EXPECT_EQ(phase(), "quitting");
    awaitPanel();
    EXPECT_TRUE(program->isRunning() && quitAll->isRunning());
    EXPECT_EQ(control({"leave"}).status, 0);

    program->send(SIGSTOP);
    EXPECT_THAT(run({VELMORQUIT}), ends(1, "Velmor Quit: è già in esecuzione, ma non risponde\n"));
    EXPECT_THAT(control({"show"}), ends(1, "velmorctl: Velmor Quit non risponde.\n"));
    // The bus tells that the first one has gone before it answered.
    auto second = std::make_unique<Child>(Words{VELMORQUIT});
    linger(500);
    EXPECT_TRUE(second->isRunning());
    program = std::move(second);
    await("an answer of the second one", [] { return control({"status"}).status == 0; });
    EXPECT_TRUE(program->isRunning()) << program->output();
}

using End = DesktopStory;

TEST_F(End, DuringARunEndsTheRunAndLeavesTheRestAlone) {
    struct Case {
        int signal;
        int status;
        std::string said;
    };
    for (const Case& one :
         {Case{SIGTERM, 1, "Finito: 1 app chiusa"}, Case{SIGINT, 1, "Finito: 1 app chiusa"},
          Case{SIGKILL, 3, "\nvelmorctl: Velmor Quit è terminata.\n"}}) {
        startProgram();
        Child& polite = openRude({"--class", "Polite"});
        Child& silent = openRude({"--ignore"});
        const auto quitAll = beginQuitAll();
        awaitEnd(polite);
        program->send(one.signal);
        EXPECT_EQ(outcomeOf(*program).status, one.signal == SIGKILL ? 128 + SIGKILL : 0);
        EXPECT_THAT(outcomeOf(*quitAll), ends(one.status, HasSubstr(one.said)));
        EXPECT_TRUE(silent.isRunning());
        silent.send(SIGKILL);
    }
}

TEST_F(End, OfTheDisplayIsItsOwnAndThatOfTheBusIsNot) {
    const auto lineOf = [](Child& server, const std::string& beginnings) {
        std::string line;
        await("a line that says where a server is", [&] {
            std::istringstream lines(server.output());
            while (std::getline(lines, line) && lines.good()) {
                if (line.find_first_of(beginnings) == 0)
                    return true;
            }
            return false;
        });
        return line;
    };
    Child server({"Xvfb", "-displayfd", "1", "-nolisten", "tcp", "-noreset"});
    startProgram({"env", "DISPLAY=:" + lineOf(server, "0123456789"), VELMORQUIT});
    server.send(SIGTERM);
    EXPECT_THAT(outcomeOf(*program),
                ends(1, AllOf(EndsWith("Velmor Quit: senza server X11 non posso continuare, "
                                       "termino\n"),
                              Not(HasSubstr("connection broke")))));
    EXPECT_EQ(control({"status"}).status, 3);
    EXPECT_EQ(outcomeOf(server).status, 0);

    Child bus({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"});
    const std::string address = "DBUS_SESSION_BUS_ADDRESS=" + lineOf(bus, "u");
    program = std::make_unique<Child>(Words{"env", address, VELMORQUIT});
    await("an answer", [&] { return run({"env", address, VELMORCTL, "status"}).status == 0; });
    bus.send(SIGTERM);
    awaitText(*program, "\n");
    EXPECT_EQ(program->output(), "Velmor Quit: il bus di sessione è terminato, velmorctl non può "
                                 "più raggiungermi\n");
    EXPECT_TRUE(program->isRunning());
    program->send(SIGTERM);
    EXPECT_EQ(outcomeOf(*program).status, 0);
}

} // namespace
} // namespace velmorquit
