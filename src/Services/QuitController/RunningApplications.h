#pragma once

#include "Loop/Published.h"
#include "Platform/Desktop.h"
#include "Platform/Workspace.h"
#include "Services/MemoryMonitor.h"
#include "Services/QuitController/OpenApp.h"
#include "Services/Settings.h"

#include <set>
#include <string>
#include <vector>

namespace velmorquit {

/// Which applications are open, and which of them the user has excluded.
class RunningApplications {
public:
    RunningApplications(const Desktop& desktop, Settings& settings);

    /// Open applications, most memory first.
    Published<std::vector<OpenApp>, RunningApplications> apps;
    /// How much of the session could be seen when they were listed.
    Published<Sight, RunningApplications> sight;
    Published<MemoryMonitor::SystemMemory, RunningApplications> systemMemory;
    /// Exclusion keys of the applications that a run leaves alone.
    Published<std::set<std::string>, RunningApplications> excluded;

    /// Lists anew what is open.
    void listApplications();

    /// Excludes the application, or includes it again, and stores the exclusions.
    void toggleExclusion(const OpenApp& app);

    /// Removes `key` from the exclusions and stores them, also for an application that isn't open.
    /// False when it was not excluded.
    bool includeAgain(const std::string& key);

    [[nodiscard]] bool isExcluded(const OpenApp& app) const;

    /// The open applications that are not excluded, most memory first.
    [[nodiscard]] std::vector<OpenApp> quittable() const;

private:
    void takeOverExclusions();
    void storeExclusions(std::set<std::string> keys);

    Desktop desktop_;
    Settings& settings_;
    Handle exclusionChanges_;
};

} // namespace velmorquit
