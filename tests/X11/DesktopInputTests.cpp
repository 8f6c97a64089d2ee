#include "Linux/Input/DesktopInput.h"
#include "Linux/X11/X11Idle.h"
#include "X11/FaceTest.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"

#include <optional>

namespace velmorquit {
namespace {

/// Stands for one that knows of the input of a whole session.
class StandInCompositor final : public StandInService {
public:
    StandInCompositor(const QDBusConnection& connection, const char* name, QVariant since)
        : StandInService(connection, {name}), idle(std::move(since)) {}

    QVariant idle; ///< none: it says nothing

private:
    void reply(const QDBusMessage& call) override {
        const QString asked = call.interface() + '.' + call.member();
        if (asked == "org.gnome.Mutter.IdleMonitor.GetIdletime" ||
            asked == "org.freedesktop.ScreenSaver.GetSessionIdleTime")
            send(call, idle);
        else
            StandInService::reply(call);
    }
};

constexpr const char* mutterName = "org.gnome.Mutter.IdleMonitor";
constexpr const char* plasmaName = "org.kde.screensaver";
constexpr std::optional<Duration> ofLocker = 1ms;

class DesktopInputTest : public FaceTest {
protected:
    using Server = DesktopInput::Server;

    std::optional<Duration> ask(Server server) {
        DesktopInput input(loop, bus.connect(), &idle, server);
        return ask(input);
    }
    static std::optional<Duration> ask(DesktopInput& input) {
        int answers = 0;
        std::optional<Duration> since;
        const Handle asking = input.sinceLastInput([&](std::optional<Duration> answer) {
            ++answers;
            since = answer;
        });
        EXPECT_EQ(answers, 0) << "not in this turn";
        EXPECT_TRUE(waitUntil([&] { return answers > 0; }));
        linger(20);
        EXPECT_EQ(answers, 1);
        return since;
    }

    X11Idle idle{events};
    PrivateBus bus;
};

TEST_F(DesktopInputTest, AWholeServerKnowsAndBesideAGuestTheMostRecentInputCounts) {
    run({"xdotool", "mousemove", "30", "40"});
    linger(400);
    const auto before = ask(Server::whole);
    ASSERT_TRUE(before && *before >= 400ms);
    run({"xdotool", "key", "a"});
    EXPECT_LT(ask(Server::whole).value_or(20s), *before);
    linger(50);
    EXPECT_GT(ask(Server::guest), ofLocker) << "at least since what was meant for an X window";
    StandInCompositor mutter(bus.connect(), mutterName, qulonglong{0});
    EXPECT_EQ(ask(Server::guest), 0ms);
    EXPECT_GT(ask(Server::whole), ofLocker) << "it knows by itself";
    mutter.idle = qulonglong{1000 * 3600};
    EXPECT_LT(ask(Server::guest).value_or(1h), 1h) << "an X window's input is input too";
    StandInCompositor plasma(bus.connect(), plasmaName, 1U);
    EXPECT_EQ(ask(Server::guest), 1ms);
    plasma.idle = 0U;
    EXPECT_GT(ask(Server::guest), ofLocker) << "it doesn't know";
    for (const QVariant& wrong : {QVariant(-5), QVariant("1"), QVariant(~qulonglong{0})}) {
        mutter.idle = wrong;
        EXPECT_GT(ask(Server::guest), ofLocker) << wrong.toString().toStdString();
    }
}

TEST_F(DesktopInputTest, WaitsASecondAndNotForWhoHasGoneOrLostInterest) {
    const StandInCompositor mutter(bus.connect(), mutterName, {});
    const StandInCompositor plasma(bus.connect(), plasmaName, 1U);
    DesktopInput input(loop, bus.connect(), &idle, Server::guest);
    const Uptime begin = loop.uptime();
    EXPECT_EQ(ask(input), 1ms);
    EXPECT_GE(loop.uptime() - begin, DesktopInput::patience);
    int answers = 0;
    Handle asking = input.sinceLastInput([&](auto) { ++answers; });
    const Handle other = input.sinceLastInput([&](auto) {
        answers += 10;
        asking.reset();
    });
    asking.reset();
    EXPECT_TRUE(waitUntil([&] { return answers == 10; }));
    bus.stop();
    linger(50);
    EXPECT_GT(ask(input), ofLocker);
}

} // namespace
} // namespace velmorquit
