#include "Services/QuitController/LastSession.h"

#include "Platform/Files.h"
#include "Platform/Preferences.h"
#include "Platform/Workspace.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <span>
#include <string_view>

namespace velmorquit {

namespace {

constexpr const char* listKey = "lastSession";
constexpr const char* dateKey = "lastSessionDate";

Value::Data dataOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::string textOf(const Value::Data& data) {
    std::string text(data.size(), '\0');
    std::ranges::transform(data, text.begin(),
                           [](std::byte byte) { return static_cast<char>(byte); });
    return text;
}

} // namespace

LastSession::LastSession(const Desktop& desktop)
    : lastSession(desktop.loop), closedForGood(desktop.loop), desktop_(desktop) {
    load();
}

void LastSession::load() {
    const auto storedDate = desktop_.preferences.object(dateKey);
    const auto* date = storedDate ? storedDate->as<WallTime>() : nullptr;
    if (!date || *date <= desktop_.loop.now() - lastSessionAge)
        return;
    const auto storedList = desktop_.preferences.object(listKey);
    const auto* list = storedList ? storedList->as<Value::Data>() : nullptr;
    if (!list)
        return;
    if (auto apps = SavedApps::decode(textOf(*list)))
        lastSession = std::move(*apps);
}

void LastSession::remember(const std::vector<OpenApp>& closed) {
    std::vector<SavedApp> saved;
    std::vector<std::string> lost;
    std::set<std::string> paths;
    for (const OpenApp& app : closed) {
        const auto path = app.app->bundlePath();
        SavedApp record{app.name, path.value_or(std::string())};
        // Several processes may have been the windows of one application.
        if (!path || !SavedApps::canBeStored(record)) {
            if (std::ranges::find(lost, app.name) == lost.end())
                lost.push_back(app.name);
        } else if (paths.insert(*path).second) {
            saved.push_back(std::move(record));
        }
    }
    if (!closed.empty())
        closedForGood = std::move(lost);
    // A run that closed nothing takes nothing away from what can be brought back.
    if (saved.empty())
        return;
    desktop_.preferences.set(listKey, dataOf(SavedApps::encode(saved)));
    desktop_.preferences.set(dateKey, desktop_.loop.now());
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
    desktop_.preferences.remove(listKey);
    desktop_.preferences.remove(dateKey);
}

} // namespace velmorquit
