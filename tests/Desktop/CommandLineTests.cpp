#include "Desktop/DesktopStory.h"

namespace velmorquit {
namespace {

using CommandLine = DesktopStory;
using Text = testing::Matcher<std::string>;

TEST_F(CommandLine, SaysWhatIsMissingAndHowItIsUsed) {
    struct Case {
        std::string command;
        int status;
        Text text;
    };
    const std::string ctl = " " VELMORCTL " ";
    const std::string quiet = " 2>/dev/null";
    const std::string nowhere = "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere";
    const std::string alone = "env --unset=DISPLAY LC_ALL=en_GB.UTF-8 " + nowhere;
    const Text unknown = AllOf(StartsWith("velmorctl: comando sconosciuto: quit-everything\n"),
                               HasSubstr("\nUso: velmorctl COMANDO"));
    const Text notRunning = "velmorctl: Velmor Quit non è in esecuzione.\n";
    const Text noDisplay = MatchesRegex("Velmor Quit: [^\n]*DISPLAY[^\n]*\n");
    const std::string at = "-launch-at-login";
    const Case cases[] = {
        {ctl + "quit-everything", 2, unknown},
        {ctl + "quit-everything" + quiet, 2, ""},
        {ctl + "help" + quiet, 0, StartsWith("Uso: velmorctl COMANDO")},
        {ctl + "status", 3, notRunning},
        {ctl + "watch", 3, notRunning},
        {ctl + "quit-all", 3, notRunning},
        {nowhere + ctl + "quit-all", 3, StartsWith("velmorctl: ")},
        {alone + ctl + "--help" + quiet, 0, StartsWith("Usage: ")},
        {alone + ctl + "--version" + quiet, 0, MatchesRegex("velmorctl [0-9.]+\n")},
        {alone + " " VELMORQUIT " --help" + quiet, 0, StartsWith("Usage: ")},
        {alone + " " VELMORQUIT " --version" + quiet, 0, MatchesRegex("velmorquit [0-9.]+\n")},
        {"env --unset=DISPLAY " + nowhere + " " VELMORQUIT " --disable" + at + " --enable" + at, 0,
         "Avvio automatico: attivo\n"},
        {"env --unset=DISPLAY " VELMORQUIT, 1, noDisplay},
        {"DISPLAY=:4711 " VELMORQUIT, 1, noDisplay},
    };
    for (const Case& one : cases)
        EXPECT_THAT(run({"sh", "-c", one.command}), ends(one.status, one.text)) << one.command;
}

TEST_F(CommandLine, MayStopWaitingForARunThatGoesOn) {
    startProgram();
    EXPECT_EQ(control({"quit-all"}).text, "Non c'è niente da chiudere.\n");
    Child& notes = openRude({"--class", "Notes"});
    Child& mail = openRude({"--class", "Mail", "--ignore"});
    EXPECT_THAT(control({"quit-all", "--then", "shutDown"}),
                ends(2, "velmorctl: senza un terminale serve --yes: non faccio niente.\n"));
    EXPECT_THAT(control({"quit", "no"}), ends(0, "Chiedo di chiudersi a: Notes.\n"));
    awaitEnd(notes);
    EXPECT_NE(phase(), "quitting");
    EXPECT_THAT(mail.output(), Not(HasSubstr("asked")));

    EXPECT_THAT(control({"quit-all", "--timeout", "0.5"}),
                ends(4, HasSubstr("velmorctl: il tempo è scaduto")));
    EXPECT_THAT(control({"quit-all"}),
                ends(1, "velmorctl: Velmor Quit sta già chiudendo le app.\n"));
    EXPECT_EQ(phase(), "quitting");
    EXPECT_EQ(control({"leave"}).status, 0);
    const auto quitAll = beginQuitAll();
    quitAll->send(SIGINT);
    EXPECT_THAT(outcomeOf(*quitAll), ends(130, HasSubstr("velmorctl leave la ferma")));
    EXPECT_EQ(phase(), "quitting");
    EXPECT_TRUE(mail.isRunning());
}

} // namespace
} // namespace velmorquit
