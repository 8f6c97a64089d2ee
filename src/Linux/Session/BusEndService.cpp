#include "Linux/Session/BusEndService.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QDBusObjectPath>
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <chrono>
#include <utility>

namespace velmorquit {

namespace {

const QString login = QStringLiteral("org.freedesktop.login1");

QDBusMessage loginMessage(const QString& method) {
    return QDBusMessage::createMethodCall(login, "/org/freedesktop/login1",
                                          "org.freedesktop.login1.Manager", method);
}

QDBusMessage managerMessage(const SessionManager& manager, const ManagerCalls& calls,
                            LoginRequest request) {
    const ManagerMethod& method = calls.method(request);
    QDBusMessage message =
        QDBusMessage::createMethodCall(calls.service, calls.path, calls.interface, method.name);
    message.setAutoStartService(calls.service != manager.ownedName);
    message.setArguments(method.arguments);
    return message;
}

/// Empty if it isn't installed.
QString askingProgram(const SessionManager& manager) {
    return manager.askingProgram.isEmpty() ? QString()
                                           : QStandardPaths::findExecutable(manager.askingProgram);
}

BusTerms within(Duration time) {
    return {.patience = std::chrono::duration_cast<std::chrono::milliseconds>(time)};
}

bool isError(const QDBusMessage& answer) { return answer.type() == QDBusMessage::ErrorMessage; }

std::string describe(const QDBusMessage& error) {
    return (error.errorName() + " (" + error.errorMessage() + ')').toStdString();
}

// GNOME's message for it is in the user's language, and its error name contains a number.
bool isCancelled(const QDBusMessage& error) {
    return error.errorMessage().contains("cancel", Qt::CaseInsensitive) ||
           error.errorName() == "org.gtk.GDBus.UnmappedGError.Quark._g_2dio_2derror_2dquark.Code19";
}

const std::string nobodyAsks = "nessuno può chiedere conferma";

} // namespace

BusEndService::BusEndService(const PowerBus& session, const PowerBus& system, Settings settings)
    : session_(session), system_(system), settings_(std::move(settings)) {
    QStringList names;
    for (const SessionManager& manager : sessionManagers()) {
        names << manager.ownedName;
        if (!manager.asking.service.isEmpty())
            names << manager.asking.service;
    }
    names.removeDuplicates();
    watch(sessionWatcher_, session_, sessionNames_, names);
    watch(systemWatcher_, system_, systemNames_, {login});
}

// Changes arrive on the same connection as the list, and in order, so that none is missed.
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

// A late bus is asked once more, so that it isn't taken for an empty one for good.
void BusEndService::listNames(const PowerBus& bus, const QString& method,
                              std::optional<QSet<QString>>& names) {
    calls_.send(
        bus.connection(), busQuestion(method),
        [this, &bus, method, &names](const QDBusMessage& answer) {
            if (!isError(answer)) {
                const QStringList list = answer.arguments().value(0).toStringList();
                names = QSet<QString>(list.begin(), list.end());
                return;
            }
            if (!names)
                names.emplace();
            if (QDBusError(answer).type() == QDBusError::NoReply && bus.problem().empty())
                listNames(bus, method, names);
        },
        within(settings_.namesLimit));
}

bool BusEndService::Names::isOwned(const QString& name) const {
    return owned && owned->contains(name);
}

bool BusEndService::Names::isThere(const QString& name) const {
    return isOwned(name) || (startable && startable->contains(name));
}

bool BusEndService::isReady() const {
    return (sessionNames_.areKnown() || !session_.problem().empty()) &&
           (systemNames_.areKnown() || !system_.problem().empty());
}

std::optional<std::string> BusEndService::obstacle(LoginRequest request, EndForm form) const {
    if (!isReady())
        return std::nullopt;
    if (form == EndForm::asking)
        return asker() ? std::nullopt : std::optional(nobodyAsks);
    if (managerCall(request))
        return std::nullopt;
    if (const std::string problem = system_.problem(); !problem.empty())
        return "nessuno può farlo: " + problem;
    if (!systemNames_.isThere(login))
        return "nessuno può farlo: " + login.toStdString() + " non è sul bus di sistema";
    return std::nullopt;
}

std::optional<BusEndService::Call> BusEndService::managerCall(LoginRequest request) const {
    if (!session_.problem().empty())
        return std::nullopt;
    for (const SessionManager& manager : sessionManagers()) {
        if (manager.direct.method(request).name && sessionNames_.isOwned(manager.ownedName))
            return Call{session_.connection(), managerMessage(manager, manager.direct, request),
                        Silence::end};
    }
    return std::nullopt;
}

const SessionManager* BusEndService::asker() const {
    if (!session_.problem().empty())
        return nullptr;
    for (const SessionManager& manager : sessionManagers()) {
        if (sessionNames_.isOwned(manager.ownedName) &&
            (sessionNames_.isThere(manager.asking.service) || !askingProgram(manager).isEmpty()))
            return &manager;
    }
    return nullptr;
}

BusEndService::Call BusEndService::loginCall(LoginRequest request) const {
    QDBusMessage message;
    if (request == LoginRequest::logOut) {
        message = loginMessage("TerminateSession");
        message << QString::fromStdString(settings_.sessionId);
    } else {
        // Not interactive: nobody may be there to type a password.
        message = loginMessage(request == LoginRequest::restart ? "Reboot" : "PowerOff");
        message << false;
    }
    return {system_.connection(), message};
}

void BusEndService::carryOut(LoginRequest request, EndForm form) {
    if (!isReady())
        answerLater("non si sa ancora chi possa farlo");
    else if (form == EndForm::asking)
        haveAsked(request);
    else if (const auto call = managerCall(request))
        send(*call);
    else if (request == LoginRequest::logOut && settings_.sessionId.empty())
        terminateOwnSession();
    else
        send(loginCall(request));
}

void BusEndService::haveAsked(LoginRequest request) {
    const SessionManager* manager = asker();
    if (!manager)
        answerLater(nobodyAsks);
    else if (manager->asking.method(request).name)
        send({session_.connection(), managerMessage(*manager, manager->asking, request),
              Silence::question});
    else if (QProcess::startDetached(askingProgram(*manager), {}))
        answerLater(std::nullopt);
    else
        answerLater(manager->askingProgram.toStdString() + " non si avvia");
}

void BusEndService::terminateOwnSession() {
    // Waiting longer would outdate everything that was checked before.
    const Duration patience = std::min<Duration>(settings_.limit, 2s);
    QDBusMessage question = loginMessage("GetSessionByPID");
    question << static_cast<uint>(QCoreApplication::applicationPid());
    calls_.send(
        system_.connection(), question,
        [this](const QDBusMessage& found) {
            if (isError(found)) {
                answer("GetSessionByPID: " + describe(found));
                return;
            }
            const auto path = found.arguments().value(0).value<QDBusObjectPath>().path();
            send({system_.connection(),
                  QDBusMessage::createMethodCall(login, path, "org.freedesktop.login1.Session",
                                                 "Terminate")});
        },
        within(patience));
}

void BusEndService::send(const Call& call) {
    QElapsedTimer timer;
    timer.start();
    calls_.send(
        call.bus, call.message,
        [this, call, timer](const QDBusMessage& reply) {
            const bool isSilent = isError(reply) && QDBusError(reply).type() == QDBusError::NoReply;
            // The bus reports this at once; Qt's timer for an answer may be a little early.
            const bool hasLeft =
                isSilent && std::chrono::milliseconds(timer.elapsed()) < settings_.limit * 9 / 10;
            const bool isFine =
                !isError(reply) || (call.silence == Silence::end && hasLeft) ||
                (call.silence == Silence::question && (isSilent || isCancelled(reply)));
            if (isFine)
                answer(std::nullopt);
            else
                answer((call.message.service() + ' ' + call.message.member() + ": ").toStdString() +
                       describe(reply));
        },
        within(settings_.limit));
}

void BusEndService::answerLater(std::optional<std::string> failure) {
    QMetaObject::invokeMethod(
        this, [this, failure = std::move(failure)] { answer(failure); }, Qt::QueuedConnection);
}

void BusEndService::answer(const std::optional<std::string>& failure) {
    if (onAnswered)
        onAnswered(failure);
}

} // namespace velmorquit
