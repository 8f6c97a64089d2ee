#include "Linux/DBus/BusCallers.h"

#include "Linux/Proc/Confinement.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>

#include <poll.h>

namespace velmorquit {

namespace {

/// Whether the process has ended, so that its id may be another's by now.
bool hasEnded(const QDBusUnixFileDescriptor& process) {
    pollfd asked{.fd = process.fileDescriptor(), .events = POLLIN, .revents = 0};
    return ::poll(&asked, 1, 0) != 0;
}

} // namespace

void BusCallers::find(const QString& connection, std::function<void(const RemoteCaller&)> told) {
    QDBusMessage question =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                       "org.freedesktop.DBus", "GetConnectionCredentials");
    question << connection;
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question, patience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, told = std::move(told)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QDBusMessage answer = finished->reply();
                QVariantMap credentials;
                if (answer.signature() == "a{sv}")
                    credentials = qdbus_cast<QVariantMap>(answer.arguments().value(0));
                told(callerOf(credentials));
            });
}

RemoteCaller BusCallers::callerOf(const QVariantMap& credentials) const {
    const auto process = static_cast<ProcessId>(credentials.value("ProcessID").toUInt());
    const QByteArray label = credentials.value("LinuxSecurityLabel").toByteArray();
    const Confinement found = confinementOf(
        process, {label.constData(), static_cast<std::size_t>(label.size())}, ProcDirectory(proc_));
    // Newer buses hold on to the process. It is looked at last: what was read is of that one then.
    const auto held = credentials.value("ProcessFD").value<QDBusUnixFileDescriptor>();
    if (held.isValid() && hasEnded(held))
        return {.isConfined = true};
    return {.isConfined = found.isConfined, .name = found.name};
}

} // namespace velmorquit
