#include "Linux/DBus/NotifierWatcher.h"

#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <utility>

namespace velmorquit {

namespace {

const QString service = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString path = QStringLiteral("/StatusNotifierWatcher");
const QString busName = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");

/// The watcher is asked for every change that somebody says there was, but no oftener than this.
constexpr Paced::Pace pace{.rest = std::chrono::milliseconds(100)};

} // namespace

NotifierWatcher::NotifierWatcher(MainLoop& loop, QDBusConnection bus, std::function<void()> changed)
    : bus_(std::move(bus)), changed_(std::move(changed)), questions_(pace, [this] {
          isOutdated_ = true;
          if (!owner_.isEmpty() && !isAsking_)
              askForHosts();
      }) {
    if (!bus_.isConnected())
        return;
    listen();
    owner_ = askOwner();
    if (owner_.isEmpty())
        return;
    present_ = owner_;
    // The answer counts however late it comes, which a time-out of the call would rule out.
    losingPatience_ = loop.after(patience, [this] { become({}); });
    askForHosts();
}

// The senders are left out of these: for a name QtDBus would wait for the bus to tell whose it is.
void NotifierWatcher::listen() {
    bus_.connect({}, busPath, busName, "NameOwnerChanged", {service}, {}, this,
                 SLOT(hearOwner(QDBusMessage)));
    bus_.connect({}, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                 this, SLOT(hearDisconnected()));
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus_.connect({}, path, service, signal, this, SLOT(hearHosts(QDBusMessage)));
}

/// Empty when nobody has the name.
QString NotifierWatcher::askOwner() const {
    constexpr int milliseconds = 1000; // It is the bus itself that answers.
    QDBusMessage question =
        QDBusMessage::createMethodCall(busName, busPath, busName, "GetNameOwner");
    question << service;
    const QDBusMessage answer = bus_.call(question, QDBus::Block, milliseconds);
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0).toString()
                                                       : QString();
}

void NotifierWatcher::askForHosts() {
    // In ms: the answer counts however late it comes, but what is never answered piles up.
    constexpr int endlessly = 600'000;
    const unsigned number = ++question_;
    isAsking_ = true;
    isOutdated_ = false;
    QDBusMessage question =
        QDBusMessage::createMethodCall(owner_, path, "org.freedesktop.DBus.Properties", "Get");
    question << service << "IsStatusNotifierHostRegistered";
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question, endlessly), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, number](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (number == question_)
                    hearAnswer(finished->reply());
            });
}

void NotifierWatcher::hearAnswer(const QDBusMessage& answer) {
    losingPatience_.reset();
    isAsking_ = false;
    if (isOutdated_)
        questions_.ask();
    const auto hasHost = answer.arguments().value(0).value<QDBusVariant>().variant();
    become(hasHost.typeId() == QMetaType::Bool && hasHost.toBool() ? owner_ : QString());
}

void NotifierWatcher::hearOwner(const QDBusMessage& signal) {
    if (signal.service() != busName)
        return;
    losingPatience_.reset();
    owner_ = signal.arguments().value(2).toString();
    ++question_;
    isAsking_ = false;
    become({});
    questions_.ask();
}

// It may be the last one that has gone, or one of several: the watcher is asked.
void NotifierWatcher::hearHosts(const QDBusMessage& signal) {
    if (!owner_.isEmpty() && signal.service() == owner_)
        questions_.ask();
}

void NotifierWatcher::hearDisconnected() {
    losingPatience_.reset();
    owner_.clear();
    become({});
}

void NotifierWatcher::become(const QString& present) {
    if (std::exchange(present_, present) != present)
        changed_();
}

} // namespace velmorquit
