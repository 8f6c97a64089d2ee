#include "Services/QuitController/RunningApplications.h"

#include "Platform/Kernel.h"

#include <algorithm>

namespace velmorquit {

RunningApplications::RunningApplications(const Desktop& desktop, Settings& settings)
    : apps(desktop.loop), sight(desktop.loop),
      systemMemory(desktop.loop, MemoryMonitor::system(desktop.kernel)), excluded(desktop.loop),
      desktop_(desktop), settings_(settings) {
    takeOverExclusions();
    exclusionChanges_ = settings_.excludedApps.subscribe([this] { takeOverExclusions(); });
}

void RunningApplications::takeOverExclusions() {
    if (const auto& stored = settings_.excludedApps.get()) {
        excluded = *stored;
        return;
    }
    const auto own = desktop_.workspace.defaultExclusions();
    std::set<std::string> keys(own.begin(), own.end());
    keys.insert("com.apple.finder");
    excluded = std::move(keys);
}

void RunningApplications::listApplications() {
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
}

bool RunningApplications::isExcluded(const OpenApp& app) const {
    const auto& keys = excluded.get();
    return keys.contains(app.exclusionKey()) ||
           std::ranges::any_of(app.otherIdentities, [&](const std::string& identity) {
               return keys.contains(identity);
           });
}

std::vector<OpenApp> RunningApplications::quittable() const {
    std::vector<OpenApp> asked;
    std::ranges::copy_if(apps.get(), std::back_inserter(asked),
                         [this](const OpenApp& app) { return !isExcluded(app); });
    return asked;
}

void RunningApplications::toggleExclusion(const OpenApp& app) {
    // As the user saw it, before other programs' changes are taken over.
    const bool wasExcluded = isExcluded(app);
    settings_.refresh();
    takeOverExclusions();
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

bool RunningApplications::includeAgain(const std::string& key) {
    settings_.refresh();
    takeOverExclusions();
    std::set<std::string> keys = excluded;
    if (keys.erase(key) == 0)
        return false;
    storeExclusions(std::move(keys));
    return true;
}

/// The list is stored as a whole, so entries that another program has added must be in it.
void RunningApplications::storeExclusions(std::set<std::string> keys) {
    settings_.excludedApps.store(keys);
    excluded = std::move(keys);
}

} // namespace velmorquit
