#include "Linux/Session/BusSessionRegistry.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include <unistd.h>

namespace velmorquit {

/// A structure of an answer.
template <class... Fields> struct Row : std::tuple<Fields...> {
    using std::tuple<Fields...>::tuple;
};
using LoginRow = Row<QString, QString, QString, QString, uint, uint>;
using SessionRow = Row<QString, uint, QString, QString, QDBusObjectPath>;
using PlasmaRow = Row<QString, QString>;

template <class... Fields>
QDBusArgument& operator<<(QDBusArgument& out, const Row<Fields...>& row) {
    out.beginStructure();
    std::apply([&](const auto&... field) { (out << ... << field); },
               static_cast<const std::tuple<Fields...>&>(row));
    out.endStructure();
    return out;
}
// Registration wants it; nothing here reads.
template <class... Fields>
const QDBusArgument& operator>>(const QDBusArgument& in, Row<Fields...>&) {
    return in;
}

namespace {

using testing::ElementsAre;
using Against = Inhibitor::Against;

constexpr const char* loginName = "org.freedesktop.login1";
constexpr const char* gnomeName = "org.gnome.SessionManager";
constexpr const char* plasmaName = "org.kde.Solid.PowerManagement";

const uint own = ::getuid();
const uint other = own + 1;

class BusSessionRegistryTest : public testing::Test {
protected:
    BusSessionRegistryTest() {
        [&]<class... Types>(const std::tuple<Types...>*) {
            (qDBusRegisterMetaType<Types>(), ...);
            (qDBusRegisterMetaType<QList<Types>>(), ...);
        }(static_cast<std::tuple<LoginRow, SessionRow, PlasmaRow>*>(nullptr));
    }

    std::optional<SessionAccount> read() {
        std::vector<std::optional<SessionAccount>> told;
        const Handle handle = registry->read([&](const auto& account) { told.push_back(account); });
        EXPECT_TRUE(told.empty()) << "told within the call";
        EXPECT_TRUE(waitUntil([&] { return !told.empty(); }));
        linger(20);
        EXPECT_EQ(told.size(), 1U);
        return told.front();
    }

    /// A session of login1's, as one word for each property.
    void addSession(uint user, const QString& name, const QString& type,
                    const QString& state = "active", const QString& kind = "user") {
        const QString path = QStringLiteral("/session/%1").arg(sessions.size());
        sessions << SessionRow{path, user, name, "", QDBusObjectPath(path)};
        login.says["ListSessions"] = QVariant::fromValue(sessions);
        login.says[path + " GetAll"] =
            QVariantMap{{"Type", type}, {"State", state}, {"Class", kind}};
    }

    void addHeld(const QString& application, const QString& reason, uint flags) {
        const QString path = QStringLiteral("/held/%1").arg(held.size());
        held << QDBusObjectPath(path);
        gnome.says["GetInhibitors"] = QVariant::fromValue(held);
        gnome.says[path + " GetAppId"] = application;
        gnome.says[path + " GetReason"] = reason;
        gnome.says[path + " GetFlags"] = flags;
    }

    PrivateBus bus;
    PowerBus session = PowerBus::standIn(bus.address(), bus.folder());
    PowerBus system = PowerBus::standIn(bus.address(), bus.folder());
    StandInService login{bus.connect(), {loginName}};
    StandInService gnome{bus.connect(), {gnomeName}};
    StandInService plasma{bus.connect(), {plasmaName}};
    QList<SessionRow> sessions;
    QList<QDBusObjectPath> held;
    std::unique_ptr<BusSessionRegistry> registry = std::make_unique<BusSessionRegistry>(
        session, system, BusSessionRegistry::Settings{.limit = 400ms});
};

TEST_F(BusSessionRegistryTest, InhibitorsThatKeepSomethingFromHappeningCount) {
    login.says["ListInhibitors"] = QVariant::fromValue(QList<LoginRow>{
        {"sleep:shutdown", "apt", "Aggiorno", "block", other, 70},
        {"shutdown", "rsync", "Copio", "block", own, 71},
        {"shutdown:sleep", "NetworkManager", "", "delay", other, 72},
        {"handle-power-key:handle-lid-switch", "gsd", "", "block", own, 73},
        {"idle", "mpv", "Film", "block-weak", own, 74},
        {"shutdown", "Velmor Quit", "", "block", own, static_cast<uint>(::getpid())}});
    addHeld("org.example.Writer.desktop", "Documento non salvato", 1 | 8);
    addHeld("burner", "", 4);
    addHeld("switcher", "", 2);
    addHeld("Velmor Quit", "", 4 | 8);
    addHeld("gone", "", 1);
    gnome.says["/held/4 GetFlags"] = Refusal{"org.freedesktop.DBus.Error.UnknownObject"};
    plasma.says["ListInhibitions"] =
        QVariant::fromValue(QList<PlasmaRow>{{"VLC", "Riproduce"}, {"Velmor Quit", "Piano"}});
    const auto account = read();
    ASSERT_TRUE(account);
    EXPECT_THAT(account->inhibitors,
                ElementsAre(Inhibitor{Against::shutdown, "apt", "Aggiorno", 70, ""},
                            Inhibitor{Against::sessionEnd, "rsync", "Copio", 71, ""},
                            Inhibitor{Against::sleep, "mpv", "Film", 74, ""},
                            Inhibitor{Against::sessionEnd, "org.example.Writer",
                                      "Documento non salvato", 0, "org.example.Writer"},
                            Inhibitor{Against::sleep, "burner", "", 0, "burner"},
                            Inhibitor{Against::sleep, "VLC", "Riproduce", 0, "VLC"}));
}

TEST_F(BusSessionRegistryTest, UsersAndSecondSessionsAreThoseThatCanLoseSomething) {
    addSession(own, "io", "x11");
    addSession(own, "io", "tty");
    addSession(own, "io", "wayland", "closing");
    addSession(own, "io", "unspecified", "active", "manager");
    addSession(other, "bruno", "tty", "online");
    addSession(other + 1, "anna", "wayland");
    addSession(other, "bruno", "x11");
    addSession(other + 2, "gdm", "wayland", "active", "greeter");
    addSession(other + 3, "cron", "unspecified", "active", "background");
    addSession(other + 4, "daemon", "unspecified");
    addSession(other + 5, "gone", "x11");
    login.says["/session/10 GetAll"] = Refusal{"org.freedesktop.login1.NoSuchSession"};
    auto account = read();
    ASSERT_TRUE(account);
    EXPECT_THAT(account->otherUsers, ElementsAre("bruno", "anna"));
    EXPECT_FALSE(account->hasSecondSession);
    addSession(own, "io", "wayland", "online");
    account = read();
    EXPECT_TRUE(account && account->hasSecondSession);
}

TEST_F(BusSessionRegistryTest, WhoDoesNotAnswerIsNotTakenForNobody) {
    addSession(own, "io", "x11");
    addHeld("burner", "", 4);
    EXPECT_TRUE(read()) << "the others have nothing to say";
    // Whoever has just told of a session or an inhibitor can't be nobody.
    const QVariant missing = Refusal{"org.freedesktop.DBus.Error.NameHasNoOwner"};
    for (StandInService* keeper : {&login, &gnome}) {
        for (const QString& question : keeper->says.keys()) {
            const QVariant usual = keeper->says.value(question);
            QElapsedTimer timer;
            timer.start();
            for (const QVariant& bad :
                 {QVariant(), QVariant(7.5),
                  QVariant(Refusal{"org.freedesktop.DBus.Error.AccessDenied"}), missing}) {
                keeper->says[question] = bad;
                const bool isNobody = bad == missing && !question.startsWith('/');
                EXPECT_EQ(read().has_value(), isNobody) << question.toStdString();
            }
            EXPECT_LT(timer.elapsed(), 10000);
            keeper->says[question] = usual;
        }
    }
    EXPECT_TRUE(read());
}

TEST_F(BusSessionRegistryTest, WhereNobodyKeepsAnAccountItIsEmptyAndNobodyIsStarted) {
    EXPECT_EQ(read(), SessionAccount());
    EXPECT_EQ(login.calls.size() + gnome.calls.size() + plasma.calls.size(), 4);
    PrivateBus empty;
    for (const char* name : {loginName, gnomeName, plasmaName})
        empty.offer(name, "/bin/false");
    const PowerBus emptyBus = PowerBus::standIn(empty.address(), empty.folder());
    const PowerBus none = PowerBus::standIn("", bus.folder());
    for (const PowerBus* each : {&emptyBus, &none}) {
        registry =
            std::make_unique<BusSessionRegistry>(*each, *each, BusSessionRegistry::Settings{});
        EXPECT_EQ(read(), SessionAccount());
    }
}

TEST_F(BusSessionRegistryTest, NobodyIsToldWhoDoesNotWaitAnyMore) {
    addSession(own, "io", "x11");
    int told = 0;
    Handle first = registry->read([&](const auto&) { ++told; });
    Handle second;
    second = registry->read([&](const auto&) {
        ++told;
        second.reset();
        registry.reset();
    });
    const Handle third = registry->read([&](const auto&) { told += 100; });
    first.reset();
    EXPECT_TRUE(waitUntil([&] { return told > 0; }));
    linger(600);
    EXPECT_EQ(told % 100, 1);
}

} // namespace
} // namespace velmorquit
