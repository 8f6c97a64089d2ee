#include "Linux/Session/BusNotice.h"

#include "Texts/Localized.h"

#include <QDBusPendingCallWatcher>
#include <QVariantMap>

#include <utility>

namespace velmorquit {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString cancelAction = QStringLiteral("cancel");
const QString applicationId = QStringLiteral("org.velmorquit.VelmorQuit");

/// Keys of the string table.
struct Titles {
    const char* waiting;
    const char* failed;
};

Titles titlesOf(LoginRequest request) {
    switch (request) {
    case LoginRequest::shutDown:
        return {textKey("Sto per spegnere il computer"), textKey("Il computer non è stato spento")};
    case LoginRequest::restart:
        return {textKey("Sto per riavviare il computer"),
                textKey("Il computer non è stato riavviato")};
    case LoginRequest::logOut:
        break;
    }
    return {textKey("Sto per chiudere la sessione"), textKey("La sessione non è stata chiusa")};
}

/// For a text in which markup has a meaning.
std::string listed(const std::vector<std::string>& names) {
    QStringList list;
    for (const std::string& name : names)
        list << QString::fromStdString(name).toHtmlEscaped();
    return list.join(QStringLiteral(", ")).toStdString();
}

QDBusMessage message(const QString& method) {
    return QDBusMessage::createMethodCall(service, path, service, method);
}

} // namespace

BusNotice::~BusNotice() {
    if (wanted_ && wanted_->canBeCancelled)
        withdraw();
}

void BusNotice::showWaiting(LoginRequest request, const std::vector<std::string>& names) {
    show({.title = localized(titlesOf(request).waiting),
          .text = names.size() == 1 ? localized("Aspetto che si chiuda %@.", listed(names))
                                    : localized("Aspetto che si chiudano %lld app: %@.",
                                                names.size(), listed(names)),
          .canBeCancelled = true});
}

void BusNotice::showGivenUp(LoginRequest request, const std::vector<std::string>& names) {
    show({.title = localized(titlesOf(request).failed),
          .text = names.size() == 1 ? localized("%@ è rimasta aperta.", listed(names))
                                    : localized("%lld app sono rimaste aperte: %@.", names.size(),
                                                listed(names))});
}

void BusNotice::showFailure(LoginRequest request) {
    show({.title = localized(titlesOf(request).failed),
          .text = localized("Il sistema ha rifiutato o non ha risposto.")});
}

void BusNotice::show(Notice notice) {
    wanted_ = std::move(notice);
    isTold_ = false;
    update();
}

void BusNotice::withdraw() {
    wanted_.reset();
    isTold_ = false;
    update();
}

// While a notice is on its way, its number isn't known, without which it can be neither replaced
// nor withdrawn.
void BusNotice::update() {
    if (isTold_ || isSending_ || !session_.problem().empty())
        return;
    isTold_ = true;
    if (wanted_)
        send(*wanted_);
    else if (shown_ != 0)
        close();
}

void BusNotice::send(const Notice& notice) {
    listen();
    QStringList actions;
    if (notice.canBeCancelled)
        actions << cancelAction << QString::fromStdString(localized("Annulla"));
    // One that waits stays as long as the wait, others as long as the service thinks right.
    const int expiry = notice.canBeCancelled ? 0 : -1;
    const QVariantMap hints{{QStringLiteral("desktop-entry"), applicationId}};
    QDBusMessage call = message(QStringLiteral("Notify"));
    call << QStringLiteral("Velmor Quit") << shown_ << applicationId
         << QString::fromStdString(notice.title) << QString::fromStdString(notice.text) << actions
         << hints << expiry;
    isSending_ = true;
    auto* watcher = new QDBusPendingCallWatcher(session_.connection().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                hearReply(finished->reply());
            });
}

void BusNotice::hearReply(const QDBusMessage& reply) {
    isSending_ = false;
    shown_ = reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0).toUInt() : 0;
    shownBy_ = reply.service();
    update();
}

void BusNotice::close() {
    QDBusMessage call = message(QStringLiteral("CloseNotification"));
    call.setAutoStartService(false);
    call << std::exchange(shown_, 0);
    session_.connection().send(call);
}

// Not by the service's name, since Qt would wait for the bus to say who has it.
void BusNotice::listen() {
    if (std::exchange(isListening_, true))
        return;
    QDBusConnection bus = session_.connection();
    bus.connect({}, path, service, "ActionInvoked", this, SLOT(hearAction(QDBusMessage)));
    bus.connect({}, path, service, "NotificationClosed", this, SLOT(hearClosed(QDBusMessage)));
}

bool BusNotice::isOurs(const QDBusMessage& signal) const {
    return shown_ != 0 && signal.service() == shownBy_ &&
           signal.arguments().value(0).toUInt() == shown_;
}

void BusNotice::hearAction(const QDBusMessage& signal) {
    const bool isCancel = signal.arguments().value(1).toString() == cancelAction;
    if (isOurs(signal) && isCancel && wanted_ && wanted_->canBeCancelled && onCancel)
        onCancel();
}

// What the user put away doesn't come back by itself, but a number that has gone can't be replaced.
void BusNotice::hearClosed(const QDBusMessage& signal) {
    if (isOurs(signal))
        shown_ = 0;
}

} // namespace velmorquit
