#include "Linux/Remote/BusCallers.h"

#include "Linux/Proc/Confinement.h"

#include <QDBusArgument>
#include <QDBusUnixFileDescriptor>

#include <poll.h>

namespace velmorquit {

namespace {

/// Whether the process has ended, so that its id may have been reused.
bool hasEnded(const QDBusUnixFileDescriptor& process) {
    pollfd asked{.fd = process.fileDescriptor(), .events = POLLIN, .revents = 0};
    return ::poll(&asked, 1, 0) != 0;
}

} // namespace

void BusCallers::find(const QString& connection, std::function<void(const RemoteCaller&)> told) {
    questions_.send(bus_, busQuestion("GetConnectionCredentials", {connection}),
                    [this, told = std::move(told)](const QDBusMessage& answer) {
                        QVariantMap credentials;
                        if (answer.type() == QDBusMessage::ReplyMessage)
                            credentials = qdbus_cast<QVariantMap>(answer.arguments().value(0));
                        told(callerOf(credentials));
                    },
                    {.patience = patience, .signature = "a{sv}"});
}

RemoteCaller BusCallers::callerOf(const QVariantMap& credentials) const {
    const auto process = static_cast<ProcessId>(credentials.value("ProcessID").toUInt());
    const QByteArray label = credentials.value("LinuxSecurityLabel").toByteArray();
    const Confinement found = confinementOf(
        process, {label.constData(), static_cast<std::size_t>(label.size())}, ProcDirectory(proc_));
    // Newer buses hold the process. This is checked last: then all that was read belongs to it.
    const auto held = credentials.value("ProcessFD").value<QDBusUnixFileDescriptor>();
    if (held.isValid() && hasEnded(held))
        return {.isConfined = true};
    return {.isConfined = found.isConfined, .name = found.name};
}

} // namespace velmorquit
