#pragma once

#include "Platform/Desktop.h"
#include "Simulated/SimulatedBackupTool.h"
#include "Simulated/SimulatedFiles.h"
#include "Simulated/SimulatedFormats.h"
#include "Simulated/SimulatedPorts.h"
#include "Simulated/SimulatedPreferences.h"
#include "Simulated/SimulatedSession.h"
#include "Simulated/SimulatedVolumes.h"
#include "Simulated/SimulatedWorkspace.h"
#include "Simulated/VirtualLoop.h"

#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

constexpr std::uint64_t operator""_MiB(unsigned long long count) { return count << 20; }

/// A whole desktop in memory and in virtual time, with a log of everything that happens on it.
///
/// A line of the log is the virtual time in seconds since the last `startLog`, the event, and the
/// application: "6.25 quit Note".
class SimulatedDesktop {
public:
    SimulatedDesktop();

    /// Starts an application; by default it has no identifier and quits at once when asked.
    SimulatedApplication& open(std::string name, std::uint64_t memory = 0);

    void advance(Duration time) { loop.advance(time); }

    void write(std::string_view what);
    /// Clears the log and restarts its time.
    void startLog();
    [[nodiscard]] std::string log() const;

    [[nodiscard]] Desktop ports() { return ports(formats); }
    /// For a user with these formats for figures and dates.
    [[nodiscard]] Desktop ports(const Formats& userFormats);
    /// With another service that ends the session.
    [[nodiscard]] Desktop ports(LoginWindow& other) { return ports(formats, other); }

    VirtualLoop loop;
    SimulatedPreferences preferences{loop};
    SimulatedWorkspace workspace{[this](std::string_view what) { write(what); }};
    SimulatedKernel kernel{workspace};
    SimulatedSystemLog systemLog;
    SimulatedAudioProcesses audio{loop};
    SimulatedRemoteCommands remote;
    SimulatedProgram program;
    SimulatedSleepHold sleepHold;
    SimulatedFormats formats;
    SimulatedVolumes volumes{[this](std::string_view what) { write(what); }};
    SimulatedLoginWindow loginWindow{loop, [this](std::string_view what) { write(what); }};
    SimulatedWindows windows{workspace, [this](std::string_view what) { write(what); }};
    SimulatedProcesses processes{workspace};
    SimulatedSessionRegistry registry{loop};
    SimulatedInput input{loop};
    SimulatedEndService endService{loop, [this](std::string_view what) { write(what); }};
    SimulatedBackupTool backupTool{loop, [this](std::string_view what) { write(what); }};
    SimulatedFiles files{backupTool};

private:
    [[nodiscard]] Desktop ports(const Formats& userFormats, LoginWindow& endsSessions);

    std::vector<std::string> lines_;
    Uptime logStart_;
    ProcessId nextId_ = 100;
};

/// The lines as text of a log, for comparisons.
template <class... Texts> std::string Lines(Texts... lines) {
    return ((std::string(lines) + '\n') + ... + std::string());
}

} // namespace velmorquit
