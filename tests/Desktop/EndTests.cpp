#include "Desktop/DesktopStory.h"

#include "support/Waiting.h"

#include <csignal>
#include <sstream>
#include <stdexcept>

namespace velmorquit {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

using End = DesktopStory;

TEST_F(End, BySignalAtRestIsCleanAndLeavesNothing) {
    for (const int signal : {SIGTERM, SIGINT}) {
        startProgram();
        openRude();
        EXPECT_EQ(control({"exclude", "Rude"}).status, 0);
        program->send(signal);
        const Outcome end = outcomeOf(*program);
        EXPECT_EQ(end.status, 0);
        EXPECT_EQ(end.text, "");
        EXPECT_THAT(contents(preferencesFile()), HasSubstr("<string>Rude<"));
        EXPECT_EQ(control({"status"}).status, 3);
        EXPECT_EQ(run({"xdotool", "search", "--class", "^velmorquit$"}).text, "");
        startProgram();
        EXPECT_EQ(control({"include", "Rude"}).status, 0) << "the exclusion was not remembered";
        killProgram();
    }
}

TEST_F(End, BySignalDuringARunEndsTheRunAndLeavesTheRestAlone) {
    startProgram();
    Child& polite = openRude({"--class", "Polite"});
    Child& silent = openRude({"--ignore"});
    const auto quitAll = beginQuitAll();
    await("the end of the one", [&] { return !polite.isRunning(); });
    program->send(SIGTERM);
    EXPECT_EQ(outcomeOf(*program).status, 0) << program->output();
    const Outcome run = outcomeOf(*quitAll);
    EXPECT_EQ(run.status, 1) << run.text;
    EXPECT_THAT(run.text, HasSubstr("Finito: 1 app chiusa"));
    EXPECT_TRUE(silent.isRunning());
    EXPECT_THAT(silent.output(), Not(HasSubstr("SIG")));
}

/// The line with which a server says where it is: it begins with one of these characters.
std::string addressOf(Child& server, const std::string& beginnings) {
    std::string address;
    const auto isThere = [&] {
        std::istringstream lines(server.output());
        while (std::getline(lines, address)) {
            if (address.find_first_of(beginnings) == 0 && lines.good())
                return true;
        }
        return false;
    };
    if (!waitUntil(isThere))
        throw std::runtime_error("no server: " + server.output());
    return address;
}

TEST_F(End, OfTheDisplayIsTheEndOfTheProgram) {
    Child server({"Xvfb", "-displayfd", "1", "-nolisten", "tcp", "-noreset"});
    const std::string display = "DISPLAY=:" + addressOf(server, "0123456789");
    program = std::make_unique<Child>(std::vector<std::string>{"env", display, VELMORQUIT});
    await("an answer", [] { return control({"status"}).status == 0; });
    server.send(SIGTERM);
    const Outcome end = outcomeOf(*program);
    EXPECT_EQ(end.status, 1);
    EXPECT_THAT(end.text,
                EndsWith("Velmor Quit: senza server X11 non posso continuare, termino\n"));
    EXPECT_THAT(end.text, Not(HasSubstr("connection broke")));
    EXPECT_EQ(control({"status"}).status, 3);
    EXPECT_EQ(outcomeOf(server).status, 0);
}

TEST_F(End, OfTheBusLeavesTheProgramInTheTray) {
    Child bus({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"});
    const std::string address = "DBUS_SESSION_BUS_ADDRESS=" + addressOf(bus, "u");
    program = std::make_unique<Child>(std::vector<std::string>{"env", address, VELMORQUIT});
    await("an answer", [&] { return run({"env", address, VELMORCTL, "status"}).status == 0; });
    bus.send(SIGTERM);
    await("a line in the log", [this] { return !program->output().empty(); });
    EXPECT_EQ(program->output(), "Velmor Quit: il bus di sessione è terminato, velmorctl non può "
                                 "più raggiungermi\n");
    EXPECT_TRUE(program->isRunning());
    program->send(SIGTERM);
    EXPECT_EQ(outcomeOf(*program).status, 0);
}

} // namespace
} // namespace velmorquit
