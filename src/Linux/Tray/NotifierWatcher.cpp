#include "Linux/Tray/NotifierWatcher.h"

#include <QDBusVariant>

#include <utility>

namespace velmorquit {

namespace {

const QString service = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString path = QStringLiteral("/StatusNotifierWatcher");

/// The least time between questions to the watcher, however many changes are reported.
constexpr Paced::Pace pace{.rest = std::chrono::milliseconds(100)};

} // namespace

NotifierWatcher::NotifierWatcher(MainLoop& loop, QDBusConnection bus, std::function<void()> changed)
    : bus_(std::move(bus)), changed_(std::move(changed)), questions_(pace, [this] {
          isOutdated_ = true;
          if (!owner_.isEmpty() && !question_.isOpen())
              askForHosts();
      }) {
    if (!bus_.isConnected())
        return;
    name_.emplace(bus_, service, [this](const QString& owner) { hearOwner(owner); });
    listen();
    owner_ = askOwner();
    if (owner_.isEmpty())
        return;
    present_ = owner_;
    // A late answer must still count, so this isn't a time-out of the call.
    losingPatience_ = loop.after(patience, [this] { become({}); });
    askForHosts();
}

// These name no sender: given a name, QtDBus would wait for the bus to tell its owner.
void NotifierWatcher::listen() {
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus_.connect({}, path, service, signal, this, SLOT(hearHosts(QDBusMessage)));
}

/// Empty if the name has no owner.
QString NotifierWatcher::askOwner() const {
    constexpr int milliseconds = 1000; // The bus itself answers.
    const QDBusMessage answer =
        bus_.call(busQuestion("GetNameOwner", {service}), QDBus::Block, milliseconds);
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0).toString()
                                                       : QString();
}

void NotifierWatcher::askForHosts() {
    // A late answer still counts, but unanswered calls must not pile up.
    constexpr BusTerms terms{.patience = std::chrono::minutes(10)};
    isOutdated_ = false;
    QDBusMessage question =
        QDBusMessage::createMethodCall(owner_, path, "org.freedesktop.DBus.Properties", "Get");
    question << service << "IsStatusNotifierHostRegistered";
    question_.send(
        bus_, question, [this](const QDBusMessage& answer) { hearAnswer(answer); }, terms);
}

void NotifierWatcher::hearAnswer(const QDBusMessage& answer) {
    losingPatience_.reset();
    if (isOutdated_)
        questions_.ask();
    const auto hasHost = answer.arguments().value(0).value<QDBusVariant>().variant();
    become(hasHost.typeId() == QMetaType::Bool && hasHost.toBool() ? owner_ : QString());
}

void NotifierWatcher::hearOwner(const QString& owner) {
    losingPatience_.reset();
    owner_ = owner;
    question_.drop();
    become({});
    questions_.ask();
}

// The last host may have gone, or one of several: only the watcher knows.
void NotifierWatcher::hearHosts(const QDBusMessage& signal) {
    if (!owner_.isEmpty() && signal.service() == owner_)
        questions_.ask();
}

void NotifierWatcher::become(const QString& present) {
    if (std::exchange(present_, present) != present)
        changed_();
}

} // namespace velmorquit
