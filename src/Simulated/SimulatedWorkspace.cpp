#include "Simulated/SimulatedWorkspace.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

void SimulatedWorkspace::add(std::shared_ptr<SimulatedApplication> application) {
    const ProcessId id = application->processId();
    applications_.push_back(std::move(application));
    tell(WorkspaceEvent::launched, id);
}

void SimulatedWorkspace::tell(WorkspaceEvent event, ProcessId process) {
    WorkspaceChanges changes{{event, process}};
    const auto frontmost = frontmostApplication();
    const ProcessId front = frontmost ? frontmost->processId() : 0;
    if (std::exchange(front_, front) != front)
        changes.insert({WorkspaceEvent::activated, front});
    observers_.tell(changes);
}

void SimulatedWorkspace::open(const std::string& path) {
    log_("open " + path);
    if (onOpen)
        onOpen(path);
}

std::optional<std::uint64_t> SimulatedWorkspace::memoryOf(ProcessId id) const {
    for (const auto& application : applications_) {
        if (application->processId() == id && !application->isTerminated())
            return application->memory();
    }
    return std::nullopt;
}

std::vector<std::shared_ptr<RunningApplication>> SimulatedWorkspace::runningApplications() {
    std::vector<std::shared_ptr<RunningApplication>> running;
    for (const auto& application : applications_) {
        if (!application->isTerminated())
            running.push_back(application);
    }
    return running;
}

std::shared_ptr<RunningApplication> SimulatedWorkspace::frontmostApplication() const {
    const auto last =
        std::find_if(applications_.rbegin(), applications_.rend(),
                     [](const auto& application) { return !application->isTerminated(); });
    return last == applications_.rend() ? nullptr : *last;
}

} // namespace velmorquit
