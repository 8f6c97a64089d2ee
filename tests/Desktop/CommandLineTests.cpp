#include "Desktop/DesktopStory.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <cstdlib>
#include <filesystem>

namespace velmorquit {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using CommandLine = DesktopStory;

/// Holds the program's name on the bus, and says the same to everything.
class Impostor final : public QDBusVirtualObject {
public:
    explicit Impostor(QString answer) : answer_(std::move(answer)) {
        EXPECT_TRUE(bus_.registerVirtualObject("/org/velmorquit/VelmorQuit", this));
        EXPECT_TRUE(bus_.registerService("org.velmorquit.VelmorQuit"));
    }
    ~Impostor() override { QDBusConnection::disconnectFromBus("impostor"); }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        const bool isRefused = message.arguments().value(0) == "leave";
        return bus.send(isRefused
                            ? message.createErrorReply("org.velmorquit.Error.Refused", answer_)
                            : message.createReply(answer_));
    }

private:
    QDBusConnection bus_ =
        QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), "impostor");
    QString answer_;
};

TEST_F(CommandLine, ThatIsNotUnderstoodIsExplainedOnStandardError) {
    const Outcome answer = control({"quit-everything"});
    EXPECT_EQ(answer.status, 2);
    EXPECT_THAT(answer.text, StartsWith("velmorctl: comando sconosciuto: quit-everything\n"));
    EXPECT_THAT(answer.text, HasSubstr("\nUso: velmorctl COMANDO"));
    const Outcome output =
        run({"sh", "-c", std::string(VELMORCTL) + " quit-everything 2>/dev/null"});
    EXPECT_EQ(output.text, "");
    const Outcome help = run({"sh", "-c", std::string(VELMORCTL) + " help 2>/dev/null"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.text, StartsWith("Uso: velmorctl COMANDO"));
}

TEST_F(CommandLine, NeedsTheProgramToBeRunning) {
    for (const char* word : {"status", "watch", "quit-all", "show"}) {
        const Outcome answer = control({word});
        EXPECT_EQ(answer.status, 3) << word;
        EXPECT_EQ(answer.text, "velmorctl: Velmor Quit non è in esecuzione.\n") << word;
    }
}

TEST_F(CommandLine, QuitsOneByPartOfItsName) {
    startProgram();
    Child& notes = openRude({"--class", "Notes"});
    Child& mail = openRude({"--class", "Mail", "--ignore"});
    EXPECT_EQ(control({"quit", "nobody"}).status, 1);
    const Outcome outcome = control({"quit", "no"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.text, "Chiedo di chiudersi a: Notes.\n");
    await("the one that was asked to end", [&] { return !notes.isRunning(); });
    EXPECT_THAT(mail.output(), Not(HasSubstr("asked")));
    EXPECT_EQ(phase(), "idle");
}

TEST_F(CommandLine, GivesTheTerminalNothingToObeyWhoeverAnswers) {
    const Impostor impostor(QStringLiteral(
        R"({"applications":[{"name":"a\u001b[2J\n\u202eb","id":"\u009b1m","process":1}],)"
        R"("text":"c\u001b]0;\u009bd","phase":"idle"})"));
    EXPECT_THAT(control({"status"}).text, HasSubstr("a [2J b  "));
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"status"}, {"status", "--json"}, {"memory"}, {"leave"}}) {
        const Outcome answer = control(words);
        for (const char* harm : {"\x1b", "\u202e", "\u009b"})
            EXPECT_THAT(answer.text, Not(HasSubstr(harm))) << words.front();
    }
}

TEST_F(CommandLine, NamesAWindowWhoseTitleIsMeantForTheTerminal) {
    startProgram();
    openRude({"--class", "main", "--title", "Letter - R\x1bude\u202e"});
    openRude({"--class", "main", "--title", "R\x1b[2J\n", "--title-length", "1000000"});
    openRude({"--class", "Ru\u200bde\u009b"});
    const std::string text = control({"status"}).text;
    for (const char* name : {"  R ude  ", "  rude_client  ", "  Rude  "})
        EXPECT_THAT(text, HasSubstr(name));
    EXPECT_LT(text.size(), 1000U);
    for (const char* harm : {"\x1b", "\u202e", "\u009b", "\u200b"})
        EXPECT_THAT(text + program->output(), Not(HasSubstr(harm)));
}

TEST_F(CommandLine, NeedsASessionBus) {
    const std::filesystem::path empty = home() / "empty";
    std::filesystem::create_directory(empty);
    for (const char* address :
         {"--unset=DBUS_SESSION_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere"}) {
        const Outcome answer =
            run({"env", address, "XDG_RUNTIME_DIR=" + empty.string(), VELMORCTL, "quit-all"});
        EXPECT_EQ(answer.status, 3) << address;
        EXPECT_THAT(answer.text, StartsWith("velmorctl: ")) << address;
    }
}

TEST_F(CommandLine, DoesNothingThatWasNotConfirmed) {
    startProgram();
    Child& application = openRude();
    const Outcome answer = control({"quit-all", "--then", "shutDown"});
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.text, "velmorctl: senza un terminale serve --yes: non faccio niente.\n");
    EXPECT_EQ(phase(), "idle");
    EXPECT_TRUE(application.isRunning());
    EXPECT_THAT(application.output(), Not(HasSubstr("asked")));
}

TEST_F(CommandLine, SpeaksTheLanguageThatThePreferencesForceAndCutsNothing) {
    prefer({{"AppleLanguages", Value::Array{"en"}}});
    EXPECT_EQ(control({"status"}).text, "velmorctl: Velmor Quit isn’t running.\n");
    startProgram();
    EXPECT_EQ(control({"leave"}).text, "velmorctl: No apps are being quit at the moment.\n");
    const std::string name = "An Application With A Name That Is Really Very Long";
    openRude({"--class", name});
    openRude({"--class", "日本"});
    const std::string text = control({"status"}).text;
    EXPECT_THAT(text, StartsWith("Ready\n2 open apps:\n"));
    EXPECT_THAT(text, HasSubstr("  " + name + "  "));
    // Each of these characters is as wide as two letters.
    EXPECT_THAT(text, HasSubstr("  日本" + std::string(name.size() - 4, ' ') + "  "));
    const Outcome end = control({"quit-all"});
    EXPECT_EQ(end.status, 0) << end.text;
    EXPECT_THAT(end.text, HasSubstr("Done: 2 apps quit, "));
}

TEST_F(CommandLine, IsRefusedWhatMakesNoSenseNow) {
    startProgram();
    for (int time = 0; time < 2; ++time)
        EXPECT_EQ(control({"quit-all"}).text, "Non c'è niente da chiudere.\n");
    Child& application = openRude({"--ignore"});
    const auto quitAll = beginQuitAll();
    const Outcome second = control({"quit-all"});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.text, "velmorctl: Velmor Quit sta già chiudendo le app.\n");
    EXPECT_TRUE(quitAll->isRunning());
    application.send(SIGTERM);
    EXPECT_EQ(outcomeOf(*quitAll).status, 0);
}

TEST_F(CommandLine, MayStopWaitingForARunThatGoesOn) {
    startProgram();
    Child& application = openRude({"--ignore"});
    const Outcome late = control({"quit-all", "--timeout", "0.5"});
    EXPECT_EQ(late.status, 4) << late.text;
    EXPECT_THAT(late.text, HasSubstr("velmorctl: il tempo è scaduto"));
    EXPECT_EQ(phase(), "quitting");
    EXPECT_EQ(control({"leave"}).status, 0);

    const auto quitAll = beginQuitAll();
    quitAll->send(SIGINT);
    const Outcome interrupted = outcomeOf(*quitAll);
    EXPECT_EQ(interrupted.status, 130);
    EXPECT_THAT(interrupted.text, HasSubstr("velmorctl leave la ferma"));
    EXPECT_EQ(phase(), "quitting");
    EXPECT_TRUE(application.isRunning());
}

} // namespace
} // namespace velmorquit
