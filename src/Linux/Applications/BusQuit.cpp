#include "Linux/Applications/BusQuit.h"

#include "Linux/Proc/ControlGroup.h"
#include "Linux/Proc/ProcDirectory.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>

#include <utility>

namespace velmorquit {

namespace {

const QString playerPrefix = QStringLiteral("org.mpris.MediaPlayer2.");
const QString playerPath = QStringLiteral("/org/mpris/MediaPlayer2");
const QString playerInterface = QStringLiteral("org.mpris.MediaPlayer2");
const QString actions = QStringLiteral("org.gtk.Actions");

/// Only running programs are called: none is started in order to be asked to quit.
QDBusMessage call(const QString& name, const QString& path, const QString& interface,
                  const QString& method) {
    QDBusMessage message = QDBusMessage::createMethodCall(name, path, interface, method);
    message.setAutoStartService(false);
    return message;
}

} // namespace

// Errors are ignored.
void BusQuit::ask(const QDBusMessage& message, BusCalls::Answered done) {
    questions_.send(bus_, message, [done = std::move(done)](const QDBusMessage& answer) {
        if (answer.type() == QDBusMessage::ReplyMessage)
            done(answer);
    });
}

void BusQuit::quit(ProcessId process) {
    ask(busQuestion("ListNames"), [this, process](const QDBusMessage& reply) {
        for (const QString& name : reply.arguments().value(0).toStringList()) {
            if (!name.startsWith(':') && name != "org.freedesktop.DBus")
                askOwner(name, process);
        }
    });
}

// From here on the connection is addressed, even if the name gets another owner.
void BusQuit::askOwner(const QString& name, ProcessId process) {
    ask(busQuestion("GetNameOwner", {name}), [this, name, process](const QDBusMessage& reply) {
        askConnection({name, reply.arguments().value(0).toString()}, process);
    });
}

void BusQuit::askConnection(const Peer& peer, ProcessId process) {
    const auto question = busQuestion("GetConnectionUnixProcessID", {peer.connection});
    ask(question, [this, peer, process](const QDBusMessage& reply) {
        const auto owner = static_cast<ProcessId>(reply.arguments().value(0).toUInt());
        if (!speaksFor(peer.name, owner, process))
            return;
        if (peer.name.startsWith(playerPrefix))
            askPlayer(peer);
        else
            askApplication(peer);
    });
}

// A sandboxed program reaches the bus through a broker outside. Its unit may contain other programs
// that it has started: the broker is known by its executable, and its names by the application's.
bool BusQuit::speaksFor(const QString& name, ProcessId owner, ProcessId process) const {
    if (owner <= 0 || owner == process)
        return owner == process;
    const ProcDirectory proc(proc_);
    const std::string ofProcess = proc.read(process, "cgroup");
    const std::string ofOwner = proc.read(owner, "cgroup");
    const std::string_view unit = applicationUnit(ofProcess);
    const QString id = QString::fromStdString(sandboxedApplication(unit));
    return !id.isEmpty() && applicationUnit(ofOwner) == unit &&
           proc.link(owner, "exe").ends_with("/xdg-dbus-proxy") &&
           (name == id || name.startsWith(id + '.') || name.startsWith(playerPrefix));
}

void BusQuit::askPlayer(const Peer& peer) {
    QDBusMessage question =
        call(peer.connection, playerPath, "org.freedesktop.DBus.Properties", "Get");
    question << playerInterface << "CanQuit";
    ask(question, [this, peer](const QDBusMessage& reply) {
        if (qvariant_cast<QDBusVariant>(reply.arguments().value(0)).variant().toBool())
            bus_.asyncCall(call(peer.connection, playerPath, playerInterface, "Quit"));
    });
}

// An application's object has its name as path, with slashes for dots.
void BusQuit::askApplication(const Peer& peer) {
    QString path = '/' + peer.name;
    path.replace('.', '/').replace('-', '_');
    QDBusMessage question = call(peer.connection, path, actions, "Describe");
    question << "quit";
    ask(question, [this, peer, path](const QDBusMessage& reply) {
        bool isEnabled = false;
        const auto description = reply.arguments().value(0).value<QDBusArgument>();
        if (reply.signature() != "(bgav)")
            return;
        description.beginStructure();
        description >> isEnabled;
        description.endStructure();
        if (!isEnabled)
            return;
        QDBusMessage activation = call(peer.connection, path, actions, "Activate");
        activation << "quit" << QVariantList() << QVariantMap();
        bus_.asyncCall(activation);
    });
}

} // namespace velmorquit
