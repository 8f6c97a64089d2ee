#include "Linux/Applications/BusQuit.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <QDBusArgument>

#include <memory>

#include <unistd.h>

namespace velmorquit {
namespace {

/// Stands for every object of a program: a media player and an application in one.
class Program final : public StandInService {
public:
    using StandInService::StandInService;

    bool canQuit = true;

protected:
    [[nodiscard]] QString lineOf(const QDBusMessage& call) const override {
        const bool isQuestion = call.member() == "Get" || call.member() == "Describe";
        return isQuestion ? "" : call.path() + ' ' + call.member() + '(' + call.signature() + ')';
    }
    void reply(const QDBusMessage& call) override {
        if (call.member() == "Get")
            return send(call, inVariant(canQuit));
        QDBusArgument description;
        description.beginStructure();
        description << canQuit << QDBusSignature("g");
        description.beginArray(QMetaType::fromType<QDBusVariant>());
        description.endArray();
        description.endStructure();
        if (call.member() == "Describe" && call.arguments() == QVariantList{"quit"})
            send(call, QVariant::fromValue(description));
    }
};

TEST(BusQuit, AsksThePlayerAndTheApplicationOfAProcessThatCanQuitAndNoOther) {
    PrivateBus bus;
    const QDBusConnection ours = bus.connect();
    Program program(bus.connect(), {"org.mpris.MediaPlayer2.player", "org.example.Some-App"});
    BusQuit quit(ours);
    quit.quit(::getppid());
    std::make_unique<BusQuit>(ours)->quit(::getpid()); // gone before it is answered
    BusQuit(QDBusConnection("none")).quit(::getpid());
    linger(200);
    EXPECT_EQ(program.calls, QStringList());
    program.canQuit = false;
    quit.quit(::getpid());
    linger(200);
    EXPECT_EQ(program.calls, QStringList());
    program.canQuit = true;
    quit.quit(::getpid());
    EXPECT_TRUE(waitUntil([&] { return program.calls.size() == 2; }));
    program.calls.sort();
    EXPECT_EQ(program.calls, (QStringList{"/org/example/Some_App Activate(sava{sv})",
                                          "/org/mpris/MediaPlayer2 Quit()"}));
}

} // namespace
} // namespace velmorquit
