#include "Linux/Notices/BusNotice.h"

#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace velmorquit {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString applicationId = QStringLiteral("org.velmorquit.VelmorQuit");

QDBusMessage message(const QString& method) {
    return QDBusMessage::createMethodCall(service, path, service, method);
}

} // namespace

BusNotice::BusNotice(const QDBusConnection& bus, int patience) : bus_(bus) {
    losingPatience_.setSingleShot(true);
    losingPatience_.setInterval(patience);
    connect(&losingPatience_, &QTimer::timeout, this, [this] { noteUnanswerable(); });
}

BusNotice::~BusNotice() {
    if (wanted_ && wanted_->stays)
        withdraw();
}

void BusNotice::show(const Content& content) {
    wanted_ = content;
    isTold_ = false;
    update();
}

void BusNotice::withdraw() {
    wanted_.reset();
    isLost_ = false;
    isTold_ = false;
    update();
}

// While a notice is being sent its number isn't known, so it can be neither replaced nor
// withdrawn.
void BusNotice::update() {
    if (isTold_ || sending_.isOpen())
        return;
    isTold_ = true;
    if (!bus_.isConnected()) {
        QMetaObject::invokeMethod(this, [this] { noteUnanswerable(); }, Qt::QueuedConnection);
        return;
    }
    if (wanted_)
        prepare(*wanted_);
    else if (shown_ != 0)
        close();
}

// Only a service that reads the text as markup gets it in that form: any other would show the
// marks. It seldom matters, so the service is asked only when it does.
void BusNotice::prepare(const Content& content) {
    const QString text = QString::fromStdString(content.text);
    const QString markup = text.toHtmlEscaped();
    if (markup == text) {
        send(content, text);
        return;
    }
    losingPatience_.start();
    sending_.send(bus_, message(QStringLiteral("GetCapabilities")),
                  [this, text, markup](const QDBusMessage& reply) {
                      losingPatience_.stop();
                      if (!isTold_) {
                          update();
                          return;
                      }
                      const QStringList can = reply.arguments().value(0).toStringList();
                      const bool isPlain = reply.type() == QDBusMessage::ReplyMessage &&
                                           !can.contains(QLatin1String("body-markup"));
                      send(*wanted_, isPlain ? text : markup);
                  });
}

void BusNotice::send(const Content& content, const QString& text) {
    listen();
    QStringList actions;
    for (const Button& button : content.buttons)
        actions << QString::fromStdString(button.id) << QString::fromStdString(button.caption);
    // Never, or as the service thinks right.
    const int expiry = content.stays ? 0 : -1;
    const QVariantMap hints{{QStringLiteral("desktop-entry"), applicationId}};
    QDBusMessage call = message(QStringLiteral("Notify"));
    call << QStringLiteral("Velmor Quit") << shown_ << applicationId
         << QString::fromStdString(content.title) << text << actions << hints << expiry;
    isLost_ = false;
    losingPatience_.start();
    sending_.send(bus_, call, [this](const QDBusMessage& reply) { hearReply(reply); },
                  {.signature = "u"});
}

void BusNotice::hearReply(const QDBusMessage& reply) {
    losingPatience_.stop();
    const bool isShown = reply.type() == QDBusMessage::ReplyMessage;
    shown_ = isShown ? reply.arguments().value(0).toUInt() : 0;
    shownBy_ = reply.service();
    if (isTold_)
        findOutWhetherAnswerable();
    update();
}

// Not asked when nobody wants to know.
void BusNotice::findOutWhetherAnswerable() {
    if (!onUnanswerable || !wanted_ || wanted_->buttons.empty())
        return;
    if (shown_ == 0) {
        noteUnanswerable();
    } else if (knownService_ != shownBy_) {
        QDBusMessage call = message(QStringLiteral("GetCapabilities"));
        call.setAutoStartService(false);
        capabilities_.send(bus_, call,
                           [this](const QDBusMessage& reply) { hearCapabilities(reply); });
    } else if (!hasButtons_) {
        noteUnanswerable();
    }
}

// A service that doesn't answer is asked again with the next notice.
void BusNotice::hearCapabilities(const QDBusMessage& reply) {
    const bool isAnswer = reply.type() == QDBusMessage::ReplyMessage;
    const bool hasButtons =
        isAnswer && reply.arguments().value(0).toStringList().contains(QLatin1String("actions"));
    if (isAnswer) {
        knownService_ = reply.service();
        hasButtons_ = hasButtons;
    }
    if (!hasButtons)
        noteUnanswerable();
}

void BusNotice::noteUnanswerable() {
    // A copy, since the callback may replace itself.
    const auto told = onUnanswerable;
    if (wanted_ && !wanted_->buttons.empty() && told)
        told();
}

void BusNotice::close() {
    QDBusMessage call = message(QStringLiteral("CloseNotification"));
    call.setAutoStartService(false);
    call << std::exchange(shown_, 0);
    bus_.send(call);
}

// Not by the service's name: Qt would wait for the bus to tell its owner.
void BusNotice::listen() {
    if (name_)
        return;
    name_.emplace(bus_, service, [this](const QString& owner) { hearOwner(owner); });
    bus_.connect({}, path, service, "ActionInvoked", this, SLOT(hearAction(QDBusMessage)));
    bus_.connect({}, path, service, "NotificationClosed", this, SLOT(hearClosed(QDBusMessage)));
}

bool BusNotice::isOurs(const QDBusMessage& signal) const {
    return shown_ != 0 && signal.service() == shownBy_ &&
           signal.arguments().value(0).toUInt() == shown_;
}

void BusNotice::hearAction(const QDBusMessage& signal) {
    const std::string id = signal.arguments().value(1).toString().toStdString();
    const bool isThere =
        wanted_ && std::ranges::find(wanted_->buttons, id, &Button::id) != wanted_->buttons.end();
    // A copy, since the callback may replace itself.
    const auto pressed = onButton;
    if (isOurs(signal) && isThere && pressed)
        pressed(id);
}

// A new service knows our number, if at all, for something else, so it must not replace or close
// that. A question that was still shown is asked again, unless the bus itself has gone.
void BusNotice::hearOwner(const QString& owner) {
    if (!bus_.isConnected() || (shown_ != 0 && owner == shownBy_))
        return;
    isLost_ = isLost_ || (shown_ != 0 && wanted_ && wanted_->stays);
    shown_ = 0;
    if (isLost_ && owner.isEmpty()) {
        // The service may never be started again.
        noteUnanswerable();
    } else if (isLost_) {
        isTold_ = false;
        update();
    }
}

// A notice that the user dismissed doesn't return by itself, and its number can't be replaced.
void BusNotice::hearClosed(const QDBusMessage& signal) {
    if (isOurs(signal))
        shown_ = 0;
}

} // namespace velmorquit
