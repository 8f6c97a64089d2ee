#include "support/PrivateBus.h"

#include "support/Waiting.h"

#include <QCoreApplication>
#include <QDBusMessage>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace velmorquit {

std::filesystem::path PrivateBus::makeFolder(const std::string& prefix) {
    std::string name = (std::filesystem::temp_directory_path() / (prefix + "XXXXXX")).string();
    if (!::mkdtemp(name.data()))
        throw std::runtime_error("no folder for a bus");
    const std::filesystem::path folder = name;
    std::filesystem::create_directory(folder / "services");
    std::ofstream(folder / "bus.conf")
        << "<busconfig><type>session</type><listen>unix:path=" << name
        << "/bus</listen><auth>EXTERNAL</auth><servicedir>" << name << "/services</servicedir>"
        << "<policy context='default'><allow send_destination='*' eavesdrop='true'/>"
        << "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>\n";
    return folder;
}

PrivateBus::PrivateBus(const std::string& prefix)
    : folder_(makeFolder(prefix)),
      server_({"dbus-daemon", "--config-file=" + (folder_ / "bus.conf").string(), "--nofork",
               "--nopidfile", "--nosyslog", "--print-address=1"}) {
    // The socket is there a moment before anybody listens to it; the address is printed after that.
    const auto isUp = [this] { return server_.output().find("unix:") != std::string::npos; };
    if (!waitUntil(isUp))
        throw std::runtime_error("no bus: " + server_.output());
}

PrivateBus::~PrivateBus() {
    for (const QString& name : connections_)
        QDBusConnection::disconnectFromBus(name);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
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
