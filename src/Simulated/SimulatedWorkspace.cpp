#include "Simulated/SimulatedWorkspace.h"

namespace velmorquit {

void SimulatedWorkspace::add(std::shared_ptr<SimulatedApplication> application) {
    applications_.push_back(std::move(application));
    tell(WorkspaceEvent::launched);
}

std::optional<std::uint64_t> SimulatedWorkspace::memoryOf(ProcessId id) const {
    for (const auto& application : applications_) {
        if (application->processId() == id && !application->isTerminated())
            return application->memory();
    }
    return std::nullopt;
}

std::vector<std::shared_ptr<RunningApplication>> SimulatedWorkspace::runningApplications() const {
    std::vector<std::shared_ptr<RunningApplication>> running;
    for (const auto& application : applications_) {
        if (!application->isTerminated())
            running.push_back(application);
    }
    return running;
}

std::shared_ptr<RunningApplication> SimulatedWorkspace::frontmostApplication() const {
    const auto running = runningApplications();
    return running.empty() ? nullptr : running.back();
}

} // namespace velmorquit
