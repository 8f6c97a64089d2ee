#include "Desktop/DesktopStory.h"

#include "support/StandInService.h"

#include <chrono>

namespace velmorquit {
namespace {

constexpr const char* name = "org.velmorquit.VelmorQuit";
constexpr const char* object = "/org/velmorquit/VelmorQuit";
constexpr const char* notifications = "org.freedesktop.Notifications";

/// Another program that has taken the name, which is this one. It shows the desktop's notices, too.
class Stranger final : public StandInService {
public:
    enum class Manner { silent, wrongType, wrongText, twice, refusing, harmful };

    Stranger() : StandInService(QDBusConnection::sessionBus(), {name, notifications}) {}
    ~Stranger() override { disown(notifications); }

    Manner manner = Manner::silent;
    QStringList notices;

private:
    void reply(const QDBusMessage& call) override {
        const QString harmful = QStringLiteral(
            R"({"applications":[{"name":"a\u001b[2J\n\u202eb","id":"\u009b1m","process":1}],)"
            R"("text":"c\u001b]0;\u009bd","phase":"idle"})");
        const QVariant refused = Refusal{"org.velmorquit.Error.Refused", harmful};
        if (call.interface() == notifications) {
            notices << call.arguments().value(4).toString();
            send(call, 1U);
        } else if (manner == Manner::wrongType) {
            send(call, QVariantList{7U, QStringList{"a"}});
        } else if (manner == Manner::refusing) {
            send(call, Refusal{"org.freedesktop.DBus.Error.AccessDenied", "go away"});
        } else if (manner == Manner::harmful) {
            send(call, call.arguments().value(0) == "leave" ? refused : harmful);
        } else if (manner != Manner::silent) {
            if (manner == Manner::twice)
                send(call, "{}");
            send(call, "[\"phase\", {");
        }
    }
};

class Strangers : public DesktopStory {
protected:
    const std::string self = "desktop_tests (processo " + std::to_string(::getpid()) + ")";
};

TEST_F(Strangers, VelmorctlSaysWhoAnswersInTheProgramsPlaceAndNeitherHangsNorObeys) {
    using Manner = Stranger::Manner;
    Stranger stranger;
    const std::vector<Words> all{{"status"}, {"quit-all"}, {"watch"}, {"show"}, {"memory"}};
    for (const Manner manner :
         {Manner::wrongType, Manner::wrongText, Manner::twice, Manner::refusing, Manner::silent}) {
        stranger.manner = manner;
        // An answer to the last of them may be any object.
        const std::size_t count = manner == Manner::silent ? 1 : manner == Manner::twice ? 4 : 5;
        for (std::size_t index = 0; index < count; ++index) {
            const auto begin = std::chrono::steady_clock::now();
            EXPECT_THAT(control(all[index]), ends(5, HasSubstr(self)))
                << all[index].front() << ' ' << static_cast<int>(manner);
            EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
        }
    }
    stranger.manner = Manner::harmful;
    EXPECT_THAT(control({"status"}).text, HasSubstr("a [2J b  "));
    for (const Words& words : {all[0], Words{"status", "--json"}, all[4], Words{"leave"}}) {
        const std::string text = control(words).text;
        for (const char* harm : {"\x1b", "\u202e", "\u009b"})
            EXPECT_THAT(text, Not(HasSubstr(harm))) << words.front();
    }
    stranger.disown(name);
}

TEST_F(Strangers, TheProgramGoesOnWithoutItsNameUntilItIsFree) {
    Stranger stranger;
    program = std::make_unique<Child>(Words{VELMORQUIT});
    awaitText(*program, "è di " + self);
    await("a notice", [&] { return !stranger.notices.isEmpty(); });
    EXPECT_THAT(stranger.notices.first().toStdString(), HasSubstr(self));
    EXPECT_TRUE(program->isRunning()) << program->output();
    EXPECT_EQ(control({"status"}).status, 5);
    stranger.disown(name);
    await("an answer", [] { return control({"status"}).status == 0; });
    EXPECT_THAT(program->output(), HasSubstr("il mio nome sul bus è libero"));
}

// In the program's name only its own connection speaks.
TEST_F(Strangers, NobodyElseTellsVelmorctlOfChanges) {
    startProgram();
    openRude({"--ignore"});
    const auto quitAll = beginQuitAll();
    Child watch({VELMORCTL, "watch", "--json"});
    linger(500);
    const QDBusConnection bus = QDBusConnection::sessionBus();
    const char* const change = "org.velmorquit.VelmorQuit1";
    const char* const busItself = "org.freedesktop.DBus";
    const char* const busObject = "/org/freedesktop/DBus";
    const QDBusMessage owners =
        bus.call(QDBusMessage::createMethodCall(busItself, busObject, busItself, "ListNames"));
    std::vector<QDBusMessage> forged{QDBusMessage::createSignal(object, change, "Changed")};
    for (const QString& one : owners.arguments().value(0).toStringList()) {
        if (!one.startsWith(':'))
            continue;
        forged.push_back(QDBusMessage::createTargetedSignal(one, object, change, "Changed"));
        QDBusMessage gone =
            QDBusMessage::createTargetedSignal(one, busObject, busItself, "NameOwnerChanged");
        bus.send(gone << QString(name) << ":1.0" << QString());
    }
    for (QDBusMessage& signal : forged)
        bus.send(
            signal << QString(R"({"change":"phase","phase":"done","forged":true,"closed":1})"));
    linger(1000);
    EXPECT_TRUE(quitAll->isRunning()) << quitAll->output();
    EXPECT_TRUE(watch.isRunning());
    EXPECT_THAT(watch.output(), Not(HasSubstr("forged")));
}

// A program in a sandbox that may talk to this one.
TEST_F(Strangers, WhatASandboxAsksForIsDoneOnlyWhenTheUserAgrees) {
    const Words inside{"unshare", "--user", "--map-root-user"};
    if (run({inside[0], inside[1], inside[2], "true"}).status != 0)
        GTEST_SKIP() << "no namespaces here";
    const auto ask = [&](const char* word) {
        return run({inside[0], inside[1], inside[2], VELMORCTL, word});
    };
    startProgram();
    Child& rude = openRude();
    EXPECT_EQ(ask("status").status, 0);
    EXPECT_THAT(ask("quit-all"), ends(6, HasSubstr("chiede conferma sullo schermo")));
    EXPECT_EQ(ask("quit-all").status, 1);
    awaitPanel();
    press({"Return", "space", "Left", "space", "alt+p"}); // meant for another window
    linger(2000);
    EXPECT_TRUE(rude.isRunning());
    EXPECT_EQ(phase(), "idle");
    run({"xdotool", "search", "--onlyvisible", "--name", "^Velmor Quit$", "windowactivate",
         "--sync"});
    press({"Left", "space"});
    awaitEnd(rude);
    await("the end of the run", [] { return phase() == "done"; });
    EXPECT_FALSE(isPanelShown());
}

} // namespace
} // namespace velmorquit
