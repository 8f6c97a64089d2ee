#include "Linux/Bus/BusCall.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace velmorquit {

namespace {

bool isUnexpected(const QDBusMessage& answer, const QString& asked, const BusTerms& terms) {
    if (answer.type() != QDBusMessage::ReplyMessage)
        return false;
    return (terms.signature && answer.signature() != QLatin1String(terms.signature)) ||
           (asked.startsWith(':') && answer.service() != asked);
}

} // namespace

QDBusMessage busQuestion(const QString& method, const QVariantList& arguments) {
    QDBusMessage question = QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method);
    question.setArguments(arguments);
    return question;
}

// The callback may drop all calls: this watcher, still at work, must not be deleted with them.
void BusCalls::send(const QDBusConnection& bus, const QDBusMessage& message, Answered answered,
                    BusTerms terms) {
    auto* watcher = new QDBusPendingCallWatcher(
        bus.asyncCall(message, static_cast<int>(terms.patience.count())), open_.get());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [asked = message.service(), terms,
                      answered = std::move(answered)](QDBusPendingCallWatcher* finished) {
                         finished->setParent(nullptr);
                         finished->deleteLater();
                         const QDBusMessage answer = finished->reply();
                         answered(isUnexpected(answer, asked, terms)
                                      ? QDBusMessage::createError(QDBusError::InvalidSignature,
                                                                  "unexpected answer")
                                      : answer);
                     });
}

void BusCall::send(const QDBusConnection& bus, const QDBusMessage& message,
                   BusCalls::Answered answered, BusTerms terms) {
    calls_.drop();
    isOpen_ = true;
    calls_.send(
        bus, message,
        [this, answered = std::move(answered)](const QDBusMessage& answer) {
            isOpen_ = false;
            answered(answer);
        },
        terms);
}

void BusCall::drop() {
    calls_.drop();
    isOpen_ = false;
}

} // namespace velmorquit
