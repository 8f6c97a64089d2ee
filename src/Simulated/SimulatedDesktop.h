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

/// A whole desktop in memory and in virtual time, with a log of all that happened on it.
///
/// A line of the log is the virtual time since the last `startLog` in seconds, what happened, and
/// to whom: "6.25 quit Note".
class SimulatedDesktop {
public:
    SimulatedDesktop();

    /// Starts an application; by default it has no identifier and quits at once when it is asked.
    SimulatedApplication& open(std::string name, std::uint64_t memory = 0);

    void advance(Duration time) { loop.advance(time); }

    void write(std::string_view what);
    /// Forgets the log so far and counts from now on.
    void startLog();
    [[nodiscard]] std::string log() const;

    [[nodiscard]] Desktop ports() { return ports(formats); }
    /// For a user who writes figures and dates in that way.
    [[nodiscard]] Desktop ports(const Formats& userFormats);
    /// With somebody else who ends the session.
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

/// The lines as a log has them, to compare one with.
template <class... Texts> std::string Lines(Texts... lines) {
    return ((std::string(lines) + '\n') + ... + std::string());
}

} // namespace velmorquit
