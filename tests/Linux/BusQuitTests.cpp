#include "Linux/Applications/BusQuit.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <QDBusArgument>
#include <QDBusMessage>

#include <gtest/gtest.h>

#include <memory>

#include <unistd.h>

namespace velmorquit {
namespace {

/// Stands for every object of a program: a media player and an application in one.
class Program final : public StandInService {
public:
    using StandInService::StandInService;

    void hear(const QDBusMessage& message) override {
        const QString call = message.path() + ' ' + message.member();
        if (message.member() == "Get") {
            bus.send(message.createReply(QVariant::fromValue(QDBusVariant(canQuit))));
        } else if (message.member() == "Describe" && message.arguments() == QVariantList{"quit"}) {
            QDBusArgument description;
            description.beginStructure();
            description << canQuit << QDBusSignature("g");
            description.beginArray(QMetaType::fromType<QDBusVariant>());
            description.endArray();
            description.endStructure();
            bus.send(message.createReply(QVariant::fromValue(description)));
        } else {
            calls << call;
            if (message.member() == "Activate")
                calls.back() += " (" + message.signature() + ')';
        }
    }

    bool canQuit = true;
    QStringList calls;
};

class BusQuitTest : public testing::Test {
protected:
    QDBusConnection ours() { return ours_; }

    PrivateBus bus;
    QDBusConnection ours_ = bus.connect();
    Program program{bus.connect(), {"org.mpris.MediaPlayer2.player", "org.example.Some-App"}};
};

TEST_F(BusQuitTest, AsksThePlayerAndTheApplicationOfAProcess) {
    BusQuit quit(ours());
    quit.quit(::getpid());
    EXPECT_TRUE(waitUntil([&] { return program.calls.size() == 2; }));
    program.calls.sort();
    EXPECT_EQ(program.calls, (QStringList{"/org/example/Some_App Activate (sava{sv})",
                                          "/org/mpris/MediaPlayer2 Quit"}));
}

TEST_F(BusQuitTest, LeavesAloneOthersAndThoseThatCannotQuit) {
    BusQuit quit(ours());
    quit.quit(::getppid());
    linger(200);
    EXPECT_TRUE(program.calls.isEmpty()) << program.calls.join(' ').toStdString();
    program.canQuit = false;
    quit.quit(::getpid());
    linger(200);
    EXPECT_TRUE(program.calls.isEmpty()) << program.calls.join(' ').toStdString();
}

TEST_F(BusQuitTest, MayGoWhileItAsksAndNeedsNoBus) {
    std::make_unique<BusQuit>(ours())->quit(::getpid());
    BusQuit nowhere(QDBusConnection("none"));
    nowhere.quit(::getpid());
    linger(200);
}

} // namespace
} // namespace velmorquit
