#include "Linux/Power/BusSleepHold.h"

#include <QDBusPendingCallWatcher>
#include <QTimer>

#include <iterator>
#include <limits>
#include <utility>

namespace velmorquit {

namespace {

/// A grant that comes when nobody waits for it any more would hold until the process ends.
constexpr int endlessly = std::numeric_limits<int>::max();
const QString who = QStringLiteral("Velmor Quit");

} // namespace

/// A manager of power that a session may have.
struct BusSleepHold::Manager {
    const char* service;
    const char* path;
    const char* interface;
    const char* giveBack;
    bool takesFlags;
};

// The first is GNOME's interface, which others implement as well.
const BusSleepHold::Manager BusSleepHold::managers[2] = {
    {"org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager",
     "Uninhibit", true},
    {"org.freedesktop.PowerManagement", "/org/freedesktop/PowerManagement/Inhibit",
     "org.freedesktop.PowerManagement.Inhibit", "UnInhibit", false},
};

BusSleepHold::~BusSleepHold() { end(); }

void BusSleepHold::begin(const std::string& reason, Against against) {
    end();
    reason_ = reason;
    against_ = against;
    askSystem();
    askSession(std::begin(managers));
}

void BusSleepHold::end() {
    ++round_;
    // login1 releases the lock when its descriptor is closed.
    lock_ = {};
    if (grant_)
        giveBack(session_.connection(), *std::exchange(grant_, std::nullopt));
}

void BusSleepHold::call(const PowerBus& bus, const QDBusMessage& message, const Answer& answer) {
    if (!bus.problem().empty())
        return;
    // The watcher outlives this object, so that a late grant can be given back.
    auto* watcher = new QDBusPendingCallWatcher(bus.connection().asyncCall(message, endlessly));
    connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
            [answer](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                answer(finished->reply());
            });
}

QString BusSleepHold::systemService() { return QStringLiteral("org.freedesktop.login1"); }

QStringList BusSleepHold::sessionServices() {
    QStringList services;
    for (const Manager& manager : managers)
        services << QString::fromLatin1(manager.service);
    return services;
}

void BusSleepHold::askSystem() {
    QDBusMessage message = QDBusMessage::createMethodCall(
        systemService(), "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "Inhibit");
    message << (against_ == Against::anySleep ? QStringLiteral("sleep:idle")
                                              : QStringLiteral("idle"))
            << who << QString::fromStdString(reason_) << QStringLiteral("block");
    call(system_, message,
         [this, alive = std::weak_ptr(alive_), round = round_](const QDBusMessage& reply) {
             if (alive.expired())
                 return;
             const auto lock = reply.arguments().value(0).value<QDBusUnixFileDescriptor>();
             if (round == round_ && lock.isValid())
                 lock_ = lock;
         });
}

void BusSleepHold::askSession(const Manager* manager) {
    if (manager == std::end(managers))
        return;
    QDBusMessage message = QDBusMessage::createMethodCall(manager->service, manager->path,
                                                          manager->interface, "Inhibit");
    message.setAutoStartService(false);
    message << who;
    if (manager->takesFlags) {
        constexpr uint suspend = 4;
        constexpr uint idle = 8;
        const uint window = 0;
        message << window << QString::fromStdString(reason_)
                << (against_ == Against::anySleep ? suspend | idle : idle);
    } else {
        message << QString::fromStdString(reason_);
    }
    const auto goOn = [this, manager, round = round_,
                       isFirst = std::make_shared<bool>(true)](bool isWanted) {
        if (std::exchange(*isFirst, false) && isWanted && round == round_ && !grant_)
            askSession(std::next(manager));
    };
    QTimer::singleShot(patience_, this, [goOn] { goOn(true); });
    call(session_, message,
         [this, alive = std::weak_ptr(alive_), bus = session_.connection(), manager, goOn,
          round = round_](const QDBusMessage& reply) {
             const bool isGranted =
                 reply.type() == QDBusMessage::ReplyMessage && reply.signature() == "u";
             const Grant grant{manager, reply.service(), reply.arguments().value(0).toUInt()};
             if (alive.expired() || round != round_ || grant_) {
                 if (isGranted)
                     giveBack(bus, grant);
                 return;
             }
             if (isGranted)
                 grant_ = grant;
             goOn(!isGranted);
         });
}

void BusSleepHold::giveBack(const QDBusConnection& bus, const Grant& grant) {
    // To the original owner: its successor doesn't know this cookie.
    QDBusMessage message = QDBusMessage::createMethodCall(
        grant.owner, grant.manager->path, grant.manager->interface, grant.manager->giveBack);
    message << grant.cookie;
    bus.send(message);
}

} // namespace velmorquit
