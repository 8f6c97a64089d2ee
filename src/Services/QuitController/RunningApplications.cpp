#include "Platform/Kernel.h"
#include "Platform/Preferences.h"
#include "Services/QuitController/QuitController.h"

#include <algorithm>

namespace velmorquit {

void QuitController::observeWorkspace() {
    for (const auto event :
         {WorkspaceEvent::launched, WorkspaceEvent::terminated, WorkspaceEvent::policyChanged})
        observers_.push_back(desktop_.workspace.observe(event, [this] { refresh(); }));
    observers_.push_back(desktop_.volumes.observe([this] { refresh(); }));
}

void QuitController::refresh() {
    const ProcessId ownId = desktop_.kernel.ownProcessId();
    std::vector<std::shared_ptr<RunningApplication>> running;
    std::vector<ProcessId> ids;
    for (auto& application : desktop_.workspace.runningApplications()) {
        if (application->activationPolicy() != ActivationPolicy::regular ||
            application->processId() == ownId || application->isTerminated())
            continue;
        ids.push_back(application->processId());
        running.push_back(std::move(application));
    }

    const auto footprints = MemoryMonitor::footprints(desktop_.kernel, ids);
    std::vector<OpenApp> listed;
    listed.reserve(running.size());
    for (auto& application : running) {
        const std::uint64_t footprint = footprints.at(application->processId());
        listed.emplace_back(std::move(application), footprint);
    }
    std::ranges::stable_sort(listed, std::greater{}, &OpenApp::memory);
    apps = std::move(listed);
    sight = desktop_.workspace.sight();
    systemMemory = MemoryMonitor::system(desktop_.kernel);
    timeMachine = TimeMachine::info(desktop_.files, desktop_.backupTool);
    externalDrives = ExternalDrives::connected(desktop_.volumes);
}

void QuitController::startLiveUpdates() {
    refresh();
    refreshTimer_ = desktop_.loop.every(refreshInterval, [this] { refresh(); });
}

void QuitController::stopLiveUpdates() { refreshTimer_.reset(); }

bool QuitController::isExcluded(const OpenApp& app) const {
    const auto& keys = excluded.get();
    return keys.contains(app.exclusionKey()) ||
           std::ranges::any_of(app.otherIdentities, [&](const std::string& identity) {
               return keys.contains(identity);
           });
}

std::vector<OpenApp> QuitController::quittable() const {
    std::vector<OpenApp> asked;
    std::ranges::copy_if(apps.get(), std::back_inserter(asked),
                         [this](const OpenApp& app) { return !isExcluded(app); });
    return asked;
}

void QuitController::toggleExclusion(const OpenApp& app) {
    // What the user saw and meant to change.
    const bool wasExcluded = isExcluded(app);
    takeOverEdits();
    std::set<std::string> keys = excluded;
    if (wasExcluded) {
        keys.erase(app.exclusionKey());
        for (const std::string& identity : app.otherIdentities)
            keys.erase(identity);
    } else {
        keys.insert(app.exclusionKey());
    }
    storeExclusions(std::move(keys));
}

bool QuitController::includeAgain(const std::string& key) {
    takeOverEdits();
    std::set<std::string> keys = excluded;
    if (keys.erase(key) == 0)
        return false;
    storeExclusions(std::move(keys));
    return true;
}

/// The list is stored as a whole: what another program has added to it by now is part of it.
void QuitController::takeOverEdits() {
    desktop_.preferences.refresh();
    loadPreferences();
}

void QuitController::storeExclusions(std::set<std::string> keys) {
    Value::Array sorted(keys.begin(), keys.end());
    excluded = std::move(keys);
    desktop_.preferences.set("excludedApps", std::move(sorted));
}

} // namespace velmorquit
