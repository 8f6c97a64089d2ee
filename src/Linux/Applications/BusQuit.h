#pragma once

#include "Linux/Bus/BusCall.h"
#include "Platform/RunningApplication.h"

#include <string>

namespace velmorquit {

/// Asks programs to quit by what they offer on the session bus: the `quit` action of an application
/// (`org.gtk.Actions`), or a media player's own Quit (MPRIS). For those that have no windows.
class BusQuit final {
public:
    explicit BusQuit(QDBusConnection bus, std::string proc = "/proc")
        : bus_(std::move(bus)), proc_(std::move(proc)) {}

    /// Asks whatever of this process is on the bus, or of its sandbox. Returns at once; nothing
    /// tells whether there was anybody to ask.
    void quit(ProcessId process);

private:
    /// A name on the bus and the connection that had it when it was looked at.
    struct Peer {
        QString name;
        QString connection;
    };

    void ask(const QDBusMessage& message, BusCalls::Answered done);
    void askOwner(const QString& name, ProcessId process);
    void askConnection(const Peer& peer, ProcessId process);
    void askPlayer(const Peer& peer);
    void askApplication(const Peer& peer);
    [[nodiscard]] bool speaksFor(const QString& name, ProcessId owner, ProcessId process) const;

    QDBusConnection bus_;
    std::string proc_;
    BusCalls questions_;
};

} // namespace velmorquit
