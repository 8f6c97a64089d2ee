#include "Linux/DBus/BusCommands.h"

#include <utility>

namespace velmorquit {

// The object is there before the name is, so that nobody who sees the name finds nothing behind it.
BusCommands::Claim BusCommands::claimName() {
    if (!bus_.isConnected())
        return Claim::noBus;
    bus_.registerObject("/org/velmorquit/VelmorQuit", this,
                        QDBusConnection::ExportScriptableSlots |
                            QDBusConnection::ExportScriptableSignals);
    return bus_.registerService("org.velmorquit.VelmorQuit") ? Claim::ours : Claim::taken;
}

bool BusCommands::serve(std::function<RemoteAnswer(const RemoteCommand&)> handler) {
    handler_ = std::move(handler);
    return bus_.isConnected();
}

void BusCommands::announce(std::string_view change) {
    Q_EMIT Changed(QString::fromUtf8(change.data(), static_cast<qsizetype>(change.size())));
}

QString BusCommands::Perform(const QString& verb, const QStringList& arguments) {
    RemoteCommand command{verb.toStdString(), {}};
    for (const QString& argument : arguments)
        command.arguments.push_back(argument.toStdString());
    const RemoteAnswer answer =
        handler_ ? handler_(command)
                 : RemoteAnswer{RemoteAnswer::Status::refused,
                                "Velmor Quit non è pronta: riprova tra un attimo."};
    const QString text = QString::fromStdString(answer.text);
    if (answer.status == RemoteAnswer::Status::refused)
        sendErrorReply("org.velmorquit.VelmorQuit.Error.Refused", text);
    else if (answer.status == RemoteAnswer::Status::unknown)
        sendErrorReply("org.velmorquit.VelmorQuit.Error.Unknown", text);
    return text;
}

} // namespace velmorquit
