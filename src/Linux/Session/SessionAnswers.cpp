#include "Linux/Session/SessionAnswers.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QStringList>

#include <algorithm>
#include <utility>

#include <unistd.h>

namespace velmorquit {

namespace {

using Against = Inhibitor::Against;

/// The name that this program uses to hold off sleep.
const QString ownName = QStringLiteral("Velmor Quit");

/// Calls `read` with each structure of the reply's only argument, an array.
template <class Read> void forEach(const QDBusMessage& reply, Read read) {
    const auto list = reply.arguments().value(0).value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        list.beginStructure();
        read(list);
        list.endStructure();
    }
    list.endArray();
}

Inhibitor keptFor(const QString& application, const QString& why, Against against) {
    return {.against = against,
            .who = application.toStdString(),
            .why = why.toStdString(),
            .process = 0,
            .application = application.toStdString()};
}

} // namespace

std::vector<Inhibitor> loginInhibitors(const QDBusMessage& reply) {
    std::vector<Inhibitor> inhibitors;
    forEach(reply, [&](const QDBusArgument& in) {
        QString what;
        QString who;
        QString why;
        QString mode;
        uint user = 0;
        uint process = 0;
        in >> what >> who >> why >> mode >> user >> process;
        const QStringList kinds = what.split(':');
        const bool isShutdown = kinds.contains("shutdown");
        const bool isSleep = kinds.contains("sleep") || kinds.contains("idle");
        const bool isBlock = mode == "block" || mode == "block-weak";
        if (!isBlock || !(isShutdown || isSleep) || process == static_cast<uint>(::getpid()))
            return;
        // An inhibitor of this user ends with the session, whatever happens to the computer.
        const Against end = user == ::getuid() ? Against::sessionEnd : Against::shutdown;
        inhibitors.push_back({.against = isShutdown ? end : Against::sleep,
                              .who = who.toStdString(),
                              .why = why.toStdString(),
                              .process = static_cast<ProcessId>(process),
                              .application = {}});
    });
    return inhibitors;
}

std::vector<LoginSession> loginSessions(const QDBusMessage& reply) {
    std::vector<LoginSession> sessions;
    forEach(reply, [&](const QDBusArgument& in) {
        QString id;
        QString seat;
        QDBusObjectPath path;
        LoginSession session;
        in >> id >> session.user >> session.userName >> seat >> path;
        session.path = path.path();
        sessions.push_back(std::move(session));
    });
    return sessions;
}

std::vector<Inhibitor> plasmaInhibitors(const QDBusMessage& reply) {
    std::vector<Inhibitor> inhibitors;
    forEach(reply, [&](const QDBusArgument& in) {
        QString who;
        QString why;
        in >> who >> why;
        if (who != ownName)
            inhibitors.push_back(keptFor(who, why, Against::sleep));
    });
    return inhibitors;
}

std::optional<Inhibitor> inhibitorOf(const HeldInhibitor& held) {
    constexpr uint logout = 1;
    constexpr uint suspendOrIdle = 4 | 8;
    if (!held.application || !held.reason || !held.flags || *held.application == ownName ||
        (*held.flags & (logout | suspendOrIdle)) == 0)
        return std::nullopt;
    QString application = *held.application;
    if (application.endsWith(".desktop"))
        application.chop(8);
    return keptFor(application, *held.reason,
                   (*held.flags & logout) != 0 ? Against::sessionEnd : Against::sleep);
}

void countSessions(const std::vector<LoginSession>& sessions, SessionAccount& account) {
    int ownScreens = 0;
    for (const LoginSession& session : sessions) {
        const auto property = [&](const char* name) {
            return session.properties.value(name).toString();
        };
        static const QStringList classes{"user", "user-early", "user-incomplete", "user-light"};
        static const QStringList screens{"x11", "wayland", "mir"};
        if (!classes.contains(property("Class")) || property("State") == "closing")
            continue;
        const bool isScreen = screens.contains(property("Type"));
        if (session.user == ::getuid()) {
            ownScreens += isScreen ? 1 : 0;
        } else if (isScreen || property("Type") == "tty") {
            const std::string name = session.userName.toStdString();
            auto& others = account.otherUsers;
            if (std::find(others.begin(), others.end(), name) == others.end())
                others.push_back(name);
        }
    }
    account.hasSecondSession = ownScreens > 1;
}

} // namespace velmorquit
