#include "Linux/Session/BusEndService.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>

#include <array>
#include <chrono>
#include <utility>

namespace velmorquit {

namespace {

struct Method {
    const char* name = nullptr;
    QVariantList arguments{};
};

/// A session manager, known by the name that it owns. What it has no method for is done by login1.
struct Manager {
    QString ownedName;
    /// Where the methods are; it may have to be started for them.
    QString service;
    QString path;
    QString interface;
    Method logOut;
    Method shutDown{};
    Method restart{};

    [[nodiscard]] const Method& method(LoginRequest request) const {
        switch (request) {
        case LoginRequest::shutDown:
            return shutDown;
        case LoginRequest::restart:
            return restart;
        case LoginRequest::logOut:
            break;
        }
        return logOut;
    }
};

const std::array managers{
    Manager{.ownedName = "org.gnome.SessionManager",
            .service = "org.gnome.SessionManager",
            .path = "/org/gnome/SessionManager",
            .interface = "org.gnome.SessionManager",
            .logOut = {"Logout", {1U}}}, // without a question
    Manager{.ownedName = "org.xfce.SessionManager",
            .service = "org.xfce.SessionManager",
            .path = "/org/xfce/SessionManager",
            .interface = "org.xfce.Session.Manager",
            .logOut = {"Logout", {false, true}}, // no dialog; it may save the session
            .shutDown = {"Shutdown", {false}},
            .restart = {"Restart", {false}}},
    Manager{.ownedName = "org.kde.ksmserver",
            .service = "org.kde.Shutdown",
            .path = "/Shutdown",
            .interface = "org.kde.Shutdown",
            .logOut = {"logout"},
            .shutDown = {"logoutAndShutdown"},
            .restart = {"logoutAndReboot"}},
    Manager{.ownedName = "org.lxqt.session",
            .service = "org.lxqt.session",
            .path = "/LXQtSession",
            .interface = "org.lxqt.session",
            .logOut = {"logout"}}};

const QString login = QStringLiteral("org.freedesktop.login1");

QDBusMessage loginMessage(const QString& method) {
    return QDBusMessage::createMethodCall(login, "/org/freedesktop/login1",
                                          "org.freedesktop.login1.Manager", method);
}

std::string describe(const QDBusError& error) {
    return (error.name() + " (" + error.message() + ')').toStdString();
}

} // namespace

BusEndService::BusEndService(const PowerBus& session, const PowerBus& system, Settings settings)
    : session_(session), system_(system), settings_(std::move(settings)) {
    QStringList owned;
    for (const Manager& manager : managers)
        owned << manager.ownedName;
    watch(sessionWatcher_, session_, sessionNames_, owned);
    watch(systemWatcher_, system_, systemNames_, {login});
}

// What changes is told on the same connection as the list, and in order: none is missed between.
void BusEndService::watch(QDBusServiceWatcher& watcher, const PowerBus& bus, Names& names,
                          const QStringList& watched) {
    if (!bus.problem().empty())
        return;
    watcher.setConnection(bus.connection());
    watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    watcher.setWatchedServices(watched);
    connect(&watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [&names](const QString& name, const QString&, const QString& owner) {
                if (!names.owned)
                    return;
                if (owner.isEmpty())
                    names.owned->remove(name);
                else
                    names.owned->insert(name);
            });
    listNames(bus, "ListActivatableNames", names.startable);
    listNames(bus, "ListNames", names.owned);
}

void BusEndService::listNames(const PowerBus& bus, const QString& method,
                              std::optional<QSet<QString>>& names) {
    const QDBusMessage question = QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method);
    auto* watcher = new QDBusPendingCallWatcher(bus.connection().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, &names](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QStringList list = finished->reply().arguments().value(0).toStringList();
                names =
                    finished->isError() ? QSet<QString>() : QSet<QString>(list.begin(), list.end());
                if (early_ && isManagerKnown())
                    carryOut(*std::exchange(early_, std::nullopt), EndForm::direct);
            });
}

bool BusEndService::Names::has(const QString& name) const { return owned && owned->contains(name); }

std::optional<std::string> BusEndService::obstacle(LoginRequest request, EndForm) const {
    if (!isManagerKnown() || managerCall(request))
        return std::nullopt;
    if (const std::string problem = system_.problem(); !problem.empty())
        return "nessuno può farlo: " + problem;
    const bool isKnown = systemNames_.owned && systemNames_.startable;
    if (isKnown && !systemNames_.has(login) && !systemNames_.startable->contains(login))
        return "nessuno può farlo: " + login.toStdString() + " non è sul bus di sistema";
    return std::nullopt;
}

bool BusEndService::isManagerKnown() const {
    return sessionNames_.owned || !session_.problem().empty();
}

std::optional<BusEndService::Call> BusEndService::managerCall(LoginRequest request) const {
    if (!session_.problem().empty())
        return std::nullopt;
    for (const Manager& manager : managers) {
        const Method& method = manager.method(request);
        if (!method.name || !sessionNames_.has(manager.ownedName))
            continue;
        QDBusMessage message = QDBusMessage::createMethodCall(manager.service, manager.path,
                                                              manager.interface, method.name);
        message.setAutoStartService(manager.service != manager.ownedName);
        message.setArguments(method.arguments);
        return Call{session_.connection(), message, true};
    }
    return std::nullopt;
}

BusEndService::Call BusEndService::loginCall(LoginRequest request) const {
    QDBusMessage message;
    if (request == LoginRequest::logOut) {
        message = loginMessage("TerminateSession");
        message << QString::fromStdString(settings_.sessionId);
    } else {
        // Without a dialog that asks for a password, which nobody may be there to answer.
        message = loginMessage(request == LoginRequest::restart ? "Reboot" : "PowerOff");
        message << false;
    }
    return {system_.connection(), message};
}

void BusEndService::carryOut(LoginRequest request, EndForm) {
    if (!isManagerKnown())
        early_ = request;
    else if (const auto call = managerCall(request))
        send(*call);
    else if (request == LoginRequest::logOut && settings_.sessionId.empty())
        terminateOwnSession();
    else
        send(loginCall(request));
}

void BusEndService::terminateOwnSession() {
    QDBusMessage question = loginMessage("GetSessionByPID");
    question << static_cast<uint>(QCoreApplication::applicationPid());
    const auto limit = std::chrono::duration_cast<std::chrono::milliseconds>(settings_.limit);
    auto* watcher = new QDBusPendingCallWatcher(
        system_.connection().asyncCall(question, static_cast<int>(limit.count())), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (finished->isError()) {
                    answer("GetSessionByPID: " + describe(finished->error()));
                    return;
                }
                const auto path =
                    finished->reply().arguments().value(0).value<QDBusObjectPath>().path();
                send({system_.connection(),
                      QDBusMessage::createMethodCall(login, path, "org.freedesktop.login1.Session",
                                                     "Terminate")});
            });
}

void BusEndService::send(const Call& call) {
    const auto limit = std::chrono::duration_cast<std::chrono::milliseconds>(settings_.limit);
    QElapsedTimer timer;
    timer.start();
    auto* watcher = new QDBusPendingCallWatcher(
        call.bus.asyncCall(call.message, static_cast<int>(limit.count())), this);
    connect(
        watcher, &QDBusPendingCallWatcher::finished, this,
        [this, call, timer, limit](QDBusPendingCallWatcher* finished) {
            finished->deleteLater();
            const QDBusError error = finished->error();
            // The bus says so at once; Qt's timer for an answer may be a little early.
            const bool hasLeft = call.mayEndCallee && error.type() == QDBusError::NoReply &&
                                 timer.elapsed() < limit.count() * 9 / 10;
            if (!finished->isError() || hasLeft)
                answer(std::nullopt);
            else
                answer((call.message.service() + ' ' + call.message.member() + ": ").toStdString() +
                       describe(error));
        });
}

void BusEndService::answer(const std::optional<std::string>& failure) {
    if (onAnswered)
        onAnswered(failure);
}

} // namespace velmorquit
