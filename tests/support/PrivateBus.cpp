#include "support/PrivateBus.h"

#include "support/Waiting.h"

#include <QCoreApplication>
#include <QDBusMessage>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace velmorquit {

std::filesystem::path PrivateBus::writeSettings(const std::filesystem::path& folder) {
    std::filesystem::create_directory(folder / "services");
    std::ofstream(folder / "bus.conf")
        << "<busconfig><type>session</type><listen>unix:path=" << folder.string()
        << "/bus</listen><auth>EXTERNAL</auth><servicedir>" << folder.string()
        << "/services</servicedir><policy context='default'>"
        << "<allow send_destination='*' eavesdrop='true'/>"
        << "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>\n";
    return folder / "bus.conf";
}

PrivateBus::PrivateBus(const std::string& prefix)
    : folder_(prefix), server_({"dbus-daemon", "--config-file=" + writeSettings(folder()).string(),
                                "--nofork", "--nopidfile", "--nosyslog", "--print-address=1"}) {
    // The socket is there a moment before anybody listens to it; the address is printed after that.
    const auto isUp = [this] { return server_.output().find("unix:") != std::string::npos; };
    if (!waitUntil(isUp))
        throw std::runtime_error("no bus: " + server_.output());
}

PrivateBus::~PrivateBus() {
    for (const QString& name : connections_)
        QDBusConnection::disconnectFromBus(name);
}

QDBusConnection PrivateBus::connect() {
    static int count = 0;
    connections_ << QStringLiteral("private-%1").arg(++count);
    QDBusConnection connection =
        QDBusConnection::connectToBus(QString::fromStdString(address()), connections_.last());
    if (!connection.isConnected())
        throw std::runtime_error("no connection to " + address());
    return connection;
}

void PrivateBus::offer(const std::string& name, const std::string& command) {
    std::ofstream(services() / (name + ".service"))
        << "[D-BUS Service]\nName=" << name << "\nExec=" << command << '\n';
    connect().call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus", "ReloadConfig"));
}

// What was sent before a question has arrived with the answer to it. A message needs a round for
// each connection that it passes.
void settle(std::vector<QDBusConnection> connections) {
    for (int round = 0; round < 4; ++round) {
        for (const QDBusConnection& connection : connections)
            connection.call(QDBusMessage::createMethodCall(
                "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"));
        QCoreApplication::processEvents();
    }
}

} // namespace velmorquit
