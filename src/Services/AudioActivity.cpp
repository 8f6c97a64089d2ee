#include "Services/AudioActivity.h"

#include <utility>

namespace velmorquit::AudioActivity {

void busyApps(AudioProcesses& audio, const Kernel& kernel,
              std::function<void(const std::set<ProcessId>&)> told) {
    audio.busyProcesses([&kernel, told = std::move(told)](const std::vector<ProcessId>& processes) {
        told(kernel.responsibleProcesses(processes));
    });
}

} // namespace velmorquit::AudioActivity
