#pragma once

#include "Platform/RunningApplication.h"

#include <functional>
#include <vector>

namespace velmorquit {

/// The processes that use the sound server.
class AudioProcesses {
public:
    virtual ~AudioProcesses() = default;

    /// Calls `told` later, on the main loop, with the processes that play or record at that time;
    /// with none when there is no sound server or it doesn't answer. Silent streams don't count,
    /// nor ours.
    virtual void busyProcesses(std::function<void(const std::vector<ProcessId>&)> told) = 0;
};

} // namespace velmorquit
