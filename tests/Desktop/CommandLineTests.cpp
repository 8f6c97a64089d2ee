#include "Desktop/DesktopStory.h"

namespace velmorquit {
namespace {

using namespace std::string_literals;
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
        {ctl + "show", 3, notRunning},
        {"env --unset=DBUS_SESSION_BUS_ADDRESS XDG_RUNTIME_DIR=$HOME" + ctl + "quit-all", 3,
         StartsWith("velmorctl: ")},
        {nowhere + ctl + "quit-all", 3, StartsWith("velmorctl: ")},
        {alone + ctl + "--help" + quiet, 0, StartsWith("Usage: ")},
        {alone + ctl + "--version" + quiet, 0, MatchesRegex("velmorctl [0-9.]+\n")},
        {alone + " " VELMORQUIT " --help" + quiet, 0, StartsWith("Usage: ")},
        {alone + " " VELMORQUIT " --version" + quiet, 0, MatchesRegex("velmorquit [0-9.]+\n")},
        {"env --unset=DISPLAY " + nowhere + " " VELMORQUIT " --disable" + at + " --enable" + at, 0,
         "Avvio automatico: attivo\n"},
        {"env --unset=DISPLAY " + nowhere + " " VELMORQUIT " --disable" + at, 0,
         "Avvio automatico: disattivo\n"},
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

TEST_F(CommandLine, SpeaksTheLanguageOfThePreferencesAndCutsOnlyWhatIsMeantForTheTerminal) {
    prefer({{"AppleLanguages", Value::Array{"en"}}});
    EXPECT_EQ(control({"status"}).text, "velmorctl: Velmor Quit isn’t running.\n");
    startProgram();
    EXPECT_EQ(control({"leave"}).text, "velmorctl: No apps are being quit at the moment.\n");
    const std::string name = "An Application With A Name That Is Really Very Long";
    openRude({"--class", name});
    openRude({"--class", "日本"});
    openRude({"--class", "main", "--title", "Letter - R\x1bude\u202e"});
    openRude({"--class", "main", "--title", "R\x1b[2J\n", "--title-length", "1000000"});
    openRude({"--class", "Ru\u200bde\u009b"});
    const std::string text = control({"status"}).text;
    EXPECT_THAT(text, StartsWith("Ready\n5 open apps:\n"));
    // Each of these characters is as wide as two letters.
    const std::string japanese = "日本" + std::string(name.size() - 4, ' ');
    for (const std::string& shown : {name, japanese, "R ude"s, "rude_client"s, "Rude"s})
        EXPECT_THAT(text, HasSubstr("  " + shown + "  "));
    for (const char* harm : {"\x1b", "\u202e", "\u009b", "\u200b"})
        EXPECT_THAT(text + program->output(), Not(HasSubstr(harm)));
    EXPECT_LT(text.size(), 1500U);
    EXPECT_THAT(control({"quit-all"}), ends(0, HasSubstr("Done: 5 apps quit, ")));
}

} // namespace
} // namespace velmorquit
