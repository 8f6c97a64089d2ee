#include "Desktop/DesktopStory.h"

#include "support/Waiting.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <chrono>

namespace velmorquit {
namespace {

using testing::HasSubstr;

const QString name = QStringLiteral("org.velmorquit.VelmorQuit");

const QString notifications = QStringLiteral("org.freedesktop.Notifications");

/// Another program that has taken the name, which is this one. It shows the desktop's notices, too.
class Stranger final : public QDBusVirtualObject {
public:
    enum class Manner { silent, wrongType, wrongText, twice, refusing };

    explicit Stranger(Manner manner) : manner_(manner) {
        EXPECT_TRUE(bus_.registerVirtualObject("/", this, QDBusConnection::SubPath));
        EXPECT_TRUE(bus_.registerService(name));
        EXPECT_TRUE(bus_.registerService(notifications));
    }
    Stranger(const Stranger&) = delete;
    Stranger& operator=(const Stranger&) = delete;
    ~Stranger() override {
        bus_.unregisterService(name);
        bus_.unregisterService(notifications);
        bus_.unregisterObject("/");
    }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
        if (call.interface() == notifications) {
            notices << call.arguments().value(4).toString();
            bus_.send(call.createReply(1U));
            return true;
        }
        switch (manner_) {
        case Manner::silent:
            break;
        case Manner::wrongType:
            bus_.send(call.createReply(QVariantList{7U, QStringList{"a"}}));
            break;
        case Manner::twice:
            bus_.send(call.createReply(QString("{}")));
            [[fallthrough]];
        case Manner::wrongText:
            bus_.send(call.createReply(QString("[\"phase\", {")));
            break;
        case Manner::refusing:
            bus_.send(call.createErrorReply(QDBusError::AccessDenied, "go away"));
            break;
        }
        return true;
    }

    QStringList notices;

private:
    QDBusConnection bus_ = QDBusConnection::sessionBus();
    Manner manner_;
};

class Strangers : public DesktopStory {
protected:
    static Outcome timed(const std::vector<std::string>& words) {
        const auto begin = std::chrono::steady_clock::now();
        Outcome outcome = control(words);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
        return outcome;
    }
    static inline const std::string self =
        "desktop_tests (processo " + std::to_string(::getpid()) + ")";
};

TEST_F(Strangers, VelmorctlSaysWhoAnswersInTheProgramsPlaceAndNeverHangs) {
    using Manner = Stranger::Manner;
    for (const Manner manner :
         {Manner::wrongType, Manner::wrongText, Manner::twice, Manner::refusing, Manner::silent}) {
        const Stranger stranger(manner);
        for (const auto& words : std::vector<std::vector<std::string>>{
                 {"status"}, {"quit-all"}, {"watch"}, {"show"}, {"memory"}}) {
            // An answer to these may be any object.
            if (manner == Manner::twice && words.front() == "memory")
                continue;
            const Outcome outcome = timed(words);
            EXPECT_EQ(outcome.status, 5) << words.front() << ' ' << static_cast<int>(manner);
            EXPECT_THAT(outcome.text, HasSubstr(self)) << words.front();
            if (manner == Manner::silent)
                break;
        }
    }
}

TEST_F(Strangers, TheProgramGoesOnWithoutItsNameUntilItIsFree) {
    {
        const Stranger stranger(Stranger::Manner::silent);
        program = std::make_unique<Child>(std::vector<std::string>{VELMORQUIT});
        await("a word about it",
              [&] { return program->output().find("è di " + self) != std::string::npos; });
        await("a notice", [&] { return !stranger.notices.isEmpty(); });
        EXPECT_THAT(stranger.notices.first().toStdString(), HasSubstr(self));
        EXPECT_TRUE(program->isRunning()) << program->output();
        EXPECT_EQ(control({"status"}).status, 5);
    }
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
    QDBusConnection bus = QDBusConnection::sessionBus();
    const QStringList names =
        bus.call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                "org.freedesktop.DBus", "ListNames"))
            .arguments()
            .value(0)
            .toStringList();
    std::vector<QDBusMessage> signals_{QDBusMessage::createSignal(
        "/org/velmorquit/VelmorQuit", "org.velmorquit.VelmorQuit1", "Changed")};
    for (const QString& one : names) {
        if (one.startsWith(':')) {
            signals_.push_back(QDBusMessage::createTargetedSignal(
                one, "/org/velmorquit/VelmorQuit", "org.velmorquit.VelmorQuit1", "Changed"));
            QDBusMessage gone = QDBusMessage::createTargetedSignal(
                one, "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged");
            gone << name << ":1.0" << QString();
            bus.send(gone);
        }
    }
    for (QDBusMessage& signal : signals_) {
        signal << QString(R"({"change":"phase","phase":"done","forged":true,"closed":1})");
        bus.send(signal);
    }
    linger(1000);
    EXPECT_TRUE(quitAll->isRunning()) << quitAll->output();
    EXPECT_TRUE(watch.isRunning());
    EXPECT_EQ(watch.output().find("forged"), std::string::npos) << watch.output();
}

/// A program in a sandbox that may talk to this one.
class Sandboxed : public DesktopStory {
protected:
    static Outcome controlFromInside(std::vector<std::string> words) {
        words.insert(words.begin(), {"unshare", "--user", "--map-root-user", VELMORCTL});
        return run(words);
    }
    static std::string question() {
        return run({"xdotool", "search", "--onlyvisible", "--name", "^Velmor Quit$"}).text;
    }
    void SetUp() override {
        if (std::system("unshare --user --map-root-user true 2>/dev/null") != 0)
            GTEST_SKIP() << "no namespaces here";
        startProgram();
    }
};

TEST_F(Sandboxed, WhatItAsksForIsDoneWhenTheUserAgrees) {
    openRude();
    EXPECT_EQ(controlFromInside({"status"}).status, 0);
    const Outcome asked = controlFromInside({"quit-all"});
    EXPECT_EQ(asked.status, 6) << asked.text;
    EXPECT_THAT(asked.text, HasSubstr("chiede conferma sullo schermo"));
    EXPECT_EQ(controlFromInside({"quit-all"}).status, 1);
    await("the question", [] { return !question().empty(); });
    EXPECT_EQ(phase(), "idle");
    // Not before it can have been read.
    linger(2000);
    run({"xdotool", "search", "--onlyvisible", "--name", "^Velmor Quit$", "windowactivate",
         "--sync"});
    run({"xdotool", "key", "Left", "space"});
    await("the end of the run", [] { return phase() == "done"; });
    EXPECT_EQ(question(), "");
}

TEST_F(Sandboxed, TheKeysThatWereMeantForAnotherWindowAgreeToNothing) {
    Child& rude = openRude();
    EXPECT_EQ(controlFromInside({"quit-all"}).status, 6);
    await("the question", [] { return !question().empty(); });
    run({"xdotool", "key", "Return", "space", "Left", "space", "alt+p"});
    linger(500);
    EXPECT_TRUE(rude.isRunning());
    EXPECT_EQ(phase(), "idle");
}

} // namespace
} // namespace velmorquit
