#include "Linux/DBus/BusCommands.h"

#include "Texts/Localized.h"

#include <QDBusMessage>

#include <utility>

namespace velmorquit {

namespace {

const QString service = QStringLiteral("org.velmorquit.VelmorQuit");
const QString path = QStringLiteral("/org/velmorquit/VelmorQuit");

} // namespace

BusCommands::BusCommands(SystemLog& log) : log_(log) {
    bus_.connect({}, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                 this, SLOT(loseBus()));
}

// The object is there before the name is, so that nobody who sees the name finds nothing behind it.
BusCommands::Claim BusCommands::claimName() {
    if (!bus_.isConnected())
        return Claim::noBus;
    bus_.registerObject(path, this,
                        QDBusConnection::ExportScriptableSlots |
                            QDBusConnection::ExportScriptableSignals |
                            QDBusConnection::ExportAdaptors);
    return bus_.registerService(service) ? Claim::ours : Claim::taken;
}

bool BusCommands::showOther(const QVariantMap& platformData, std::chrono::milliseconds limit) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, "org.freedesktop.Application", "Activate");
    call.setAutoStartService(false);
    call << platformData;
    const QDBusMessage reply = bus_.call(call, QDBus::Block, static_cast<int>(limit.count()));
    return reply.type() == QDBusMessage::ReplyMessage;
}

bool BusCommands::serve(std::function<RemoteAnswer(const RemoteCommand&)> handler) {
    handler_ = std::move(handler);
    return bus_.isConnected();
}

void BusCommands::announce(std::string_view change) {
    Q_EMIT Changed(QString::fromUtf8(change.data(), static_cast<qsizetype>(change.size())));
}

RemoteAnswer BusCommands::answer(const RemoteCommand& command) const {
    if (handler_)
        return handler_(command);
    return {RemoteAnswer::Status::refused,
            localized("Velmor Quit non è pronta: riprova tra un attimo.")};
}

QString BusCommands::Perform(const QString& verb, const QStringList& arguments) {
    RemoteCommand command{verb.toStdString(), {}};
    for (const QString& argument : arguments)
        command.arguments.push_back(argument.toStdString());
    const RemoteAnswer given = answer(command);
    const QString text = QString::fromStdString(given.text);
    if (given.status == RemoteAnswer::Status::refused)
        sendErrorReply("org.velmorquit.VelmorQuit.Error.Refused", text);
    else if (given.status == RemoteAnswer::Status::unknown)
        sendErrorReply("org.velmorquit.VelmorQuit.Error.Unknown", text);
    return text;
}

// What the bus brought is a convenience: the icon does the main job without it, and a run that is
// under way must not be lost with it. When the whole session ends, the display's end tells.
void BusCommands::loseBus() {
    log_.write("Velmor Quit: il bus di sessione è terminato, velmorctl non può più raggiungermi");
}

} // namespace velmorquit
