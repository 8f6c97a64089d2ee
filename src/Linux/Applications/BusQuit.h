#pragma once

#include "Linux/Bus/BusCall.h"
#include "Platform/RunningApplication.h"

#include <string>

namespace velmorquit {

/// Asks programs without windows to quit over the session bus: by an application's `quit` action
/// (`org.gtk.Actions`), or a media player's own Quit (MPRIS).
class BusQuit final {
public:
    explicit BusQuit(QDBusConnection bus, std::string proc = "/proc")
        : bus_(std::move(bus)), proc_(std::move(proc)) {}

    /// Asks everything that this process, or its sandbox, has on the bus. Returns at once; nothing
    /// tells whether there was anything to ask.
    void quit(ProcessId process);

private:
    /// A name on the bus, and the connection that owned it when it was looked up.
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
