#pragma once

#include "Platform/AudioProcesses.h"
#include "Platform/Kernel.h"

#include <set>

namespace velmorquit::AudioActivity {

/// Calls `told` later, on the main loop, with the processes of applications that are playing or
/// recording. Both ports must outlive the call.
void busyApps(AudioProcesses& audio, const Kernel& kernel,
              std::function<void(const std::set<ProcessId>&)> told);

} // namespace velmorquit::AudioActivity
