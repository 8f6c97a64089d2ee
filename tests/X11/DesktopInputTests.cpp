#include "Linux/Input/DesktopInput.h"
#include "Linux/X11/X11Idle.h"
#include "X11/FaceTest.h"
#include "support/PrivateBus.h"

#include <QDBusVirtualObject>

#include <optional>

namespace velmorquit {
namespace {

/// Stands for one that knows of the input of a whole session.
class StandInCompositor final : public QDBusVirtualObject {
public:
    StandInCompositor(QDBusConnection connection, const QString& name, const QString& path)
        : bus(std::move(connection)), path_(path) {
        bus.registerVirtualObject(path, this);
        bus.registerService(name);
    }
    StandInCompositor(const StandInCompositor&) = delete;
    StandInCompositor& operator=(const StandInCompositor&) = delete;
    ~StandInCompositor() override { bus.unregisterObject(path_); }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& question, const QDBusConnection&) override {
        const QString call = question.interface() + '.' + question.member();
        if (call != "org.gnome.Mutter.IdleMonitor.GetIdletime" &&
            call != "org.freedesktop.ScreenSaver.GetSessionIdleTime")
            return false;
        if (idle.isValid())
            bus.send(question.createReply(idle));
        return true;
    }

    QDBusConnection bus;
    QVariant idle; ///< none: it says nothing

private:
    QString path_;
};

constexpr std::optional<Duration> ofLocker = 1ms;

class DesktopInputTest : public FaceTest {
protected:
    using Server = DesktopInput::Server;

    X11Idle idle{events};

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

    std::unique_ptr<StandInCompositor> makeMutter(const QVariant& idle) {
        return make("org.gnome.Mutter.IdleMonitor", "/org/gnome/Mutter/IdleMonitor/Core", idle);
    }
    std::unique_ptr<StandInCompositor> makeLocker(const QString& name, const QVariant& idle) {
        return make(name, "/ScreenSaver", idle);
    }

    PrivateBus bus;

private:
    std::unique_ptr<StandInCompositor> make(const QString& name, const QString& path,
                                            const QVariant& idle) {
        auto made = std::make_unique<StandInCompositor>(bus.connect(), name, path);
        made->idle = idle;
        return made;
    }
};

TEST_F(DesktopInputTest, AWholeServerKnowsWhenTheUserWasThere) {
    const auto mutter = makeMutter(qulonglong{1});
    run({"xdotool", "mousemove", "30", "40"});
    linger(400);
    const auto before = ask(Server::whole);
    ASSERT_TRUE(before);
    EXPECT_GE(*before, 400ms);
    EXPECT_LT(*before, 20s);
    run({"xdotool", "key", "a"});
    const auto after = ask(Server::whole);
    ASSERT_TRUE(after);
    EXPECT_LT(*after, *before);
}

TEST_F(DesktopInputTest, BesideAGuestTheMostRecentInputCounts) {
    linger(50);
    EXPECT_GT(ask(Server::guest), ofLocker) << "at least since what was meant for an X window";
    const auto mutter = makeMutter(qulonglong{0});
    EXPECT_EQ(ask(Server::guest), 0ms);
    mutter->idle = qulonglong{1000 * 3600};
    const auto ofServer = ask(Server::guest);
    ASSERT_TRUE(ofServer);
    EXPECT_LT(*ofServer, 1h) << "what was meant for an X window is input too";
    const auto plasma = makeLocker("org.kde.screensaver", uint{1});
    EXPECT_EQ(ask(Server::guest), 1ms);
}

TEST_F(DesktopInputTest, BelievesOnlyWhoIsKnownToAnswerWithAFigure) {
    linger(50);
    const auto other = makeLocker("org.freedesktop.ScreenSaver", uint{1});
    EXPECT_GT(ask(Server::guest), ofLocker);
    const auto plasma = makeLocker("org.kde.screensaver", uint{0});
    EXPECT_GT(ask(Server::guest), ofLocker);
    for (const QVariant& wrong : {QVariant(-5), QVariant("1"), QVariant(~qulonglong{0})}) {
        const auto mutter = makeMutter(wrong);
        EXPECT_GT(ask(Server::guest), ofLocker) << wrong.toString().toStdString();
    }
}

TEST_F(DesktopInputTest, WaitsASecondAndNotForWhoHasGoneOrLostInterest) {
    const auto mutter = makeMutter({});
    const auto plasma = makeLocker("org.kde.screensaver", uint{1});
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
    auto shortLived =
        std::make_unique<DesktopInput>(loop, QDBusConnection("no bus"), &idle, Server::whole);
    asking = shortLived->sinceLastInput([&](auto) { ++answers; });
    shortLived.reset();
    linger(50);
    EXPECT_EQ(answers, 10);
}

} // namespace
} // namespace velmorquit
