#include "Services/AudioActivity.h"

#include <utility>

namespace velmorquit::AudioActivity {

void busyApps(AudioProcesses& audio, const Kernel& kernel,
              std::function<void(const std::set<ProcessId>&)> told) {
    audio.busyProcesses([&kernel, told = std::move(told)](const std::vector<ProcessId>& processes) {
        std::set<ProcessId> apps;
        for (const ProcessId id : processes)
            apps.insert(kernel.responsibleProcess(id));
        told(apps);
    });
}

} // namespace velmorquit::AudioActivity
