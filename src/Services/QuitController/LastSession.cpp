#include "Services/QuitController/LastSession.h"

#include "Platform/Files.h"
#include "Platform/Workspace.h"

#include <algorithm>
#include <set>
#include <utility>

namespace velmorquit {

LastSession::LastSession(const Desktop& desktop, Settings& settings)
    : lastSession(desktop.loop), closedForGood(desktop.loop), desktop_(desktop),
      settings_(settings) {
    const auto& date = settings_.lastSessionDate.get();
    const auto& apps = settings_.lastSession.get();
    if (date && apps && *date > desktop_.loop.now() - lastSessionAge)
        lastSession = *apps;
}

void LastSession::remember(const std::vector<OpenApp>& closed) {
    std::vector<SavedApp> saved;
    std::vector<std::string> lost;
    std::set<std::string> paths;
    for (const OpenApp& app : closed) {
        const auto path = app.app->bundlePath();
        SavedApp record{app.name, path.value_or(std::string())};
        // One application may have run as several processes.
        if (!path || !SavedApps::canBeStored(record)) {
            if (std::ranges::find(lost, app.name) == lost.end())
                lost.push_back(app.name);
        } else if (paths.insert(*path).second) {
            saved.push_back(std::move(record));
        }
    }
    if (!closed.empty())
        closedForGood = std::move(lost);
    // A run that closed nothing must not discard what can still be reopened.
    if (saved.empty())
        return;
    settings_.lastSession.store(saved);
    settings_.lastSessionDate.store(desktop_.loop.now());
    lastSession = std::move(saved);
}

std::vector<SavedApp> LastSession::reopenable() const {
    if (lastSession->empty())
        return {};
    std::set<std::string> running;
    for (const auto& application : desktop_.workspace.runningApplications()) {
        if (auto path = application->bundlePath())
            running.insert(std::move(*path));
    }
    std::vector<SavedApp> apps;
    std::ranges::copy_if(lastSession.get(), std::back_inserter(apps), [&](const SavedApp& app) {
        return !running.contains(app.path) && desktop_.files.exists(app.path);
    });
    return apps;
}

void LastSession::reopenLastSession() {
    for (const SavedApp& app : reopenable())
        desktop_.workspace.open(app.path);
    forgetLastSession();
}

void LastSession::forgetLastSession() {
    lastSession = {};
    closedForGood = {};
    settings_.lastSession.store(std::nullopt);
    settings_.lastSessionDate.store(std::nullopt);
}

} // namespace velmorquit
