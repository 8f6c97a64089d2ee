#pragma once

#include "support/Child.h"
#include "support/TemporaryFolder.h"

#include <QDBusConnection>

#include <filesystem>
#include <string>
#include <vector>

namespace velmorquit {

/// A message bus that a test started, in a folder of its own; both go with this object. What is
/// called there is started only where the test offers it.
class PrivateBus {
public:
    /// `prefix` begins the name of the folder.
    explicit PrivateBus(const std::string& prefix = "velmor-bus.");
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus();

    [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
    [[nodiscard]] std::string address() const { return "unix:path=" + (folder() / "bus").string(); }
    [[nodiscard]] std::filesystem::path services() const { return folder() / "services"; }
    /// Lets the bus start `command` for who calls `name`.
    void offer(const std::string& name, const std::string& command);
    /// One more connection, which goes with this object.
    [[nodiscard]] QDBusConnection connect();
    void stop() { server_.send(SIGKILL); }
    /// Keeps it from answering, until it is told to go on.
    void halt() { server_.send(SIGSTOP); }
    void goOn() { server_.send(SIGCONT); }

private:
    static std::filesystem::path writeSettings(const std::filesystem::path& folder);

    TemporaryFolder folder_;
    Child server_;
    QStringList connections_;
};

/// Lets all that was sent on these connections arrive, and what that leads to as well.
void settle(std::vector<QDBusConnection> connections);

} // namespace velmorquit
