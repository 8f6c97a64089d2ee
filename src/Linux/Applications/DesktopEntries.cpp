#include "Linux/Applications/DesktopEntries.h"

#include "Linux/Proc/ProcessStat.h"
#include "Linux/Text.h"

#include <gio/gdesktopappinfo.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace velmorquit {

namespace {

constexpr std::string_view suffix = ".desktop";

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
};
using AppInfo = std::unique_ptr<GDesktopAppInfo, Unref>;

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char letter) {
        return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter;
    });
    return text;
}

std::optional<Identity> identityOf(GDesktopAppInfo* info) {
    const char* id = g_app_info_get_id(G_APP_INFO(info));
    const char* file = g_desktop_app_info_get_filename(info);
    const char* name = g_app_info_get_display_name(G_APP_INFO(info));
    if (!file)
        return std::nullopt;
    // An entry opened by its path has no id: its file name is the best there is.
    std::string base = id ? id : std::string(file).substr(std::string(file).rfind('/') + 1);
    if (base.ends_with(suffix))
        base.resize(base.size() - suffix.size());
    return Identity{.id = utf8(base), .name = utf8(name ? name : base), .path = file};
}

} // namespace

DesktopEntries::DesktopEntries() : monitor_(g_app_info_monitor_get()) {
    const auto changed = +[](bool* isOutdated) { *isOutdated = true; };
    g_signal_connect_swapped(monitor_, "changed", G_CALLBACK(changed), &isOutdated_);
}

DesktopEntries::~DesktopEntries() {
    g_signal_handlers_disconnect_by_data(monitor_, &isOutdated_);
    g_object_unref(monitor_);
}

Identity DesktopEntries::identify(const ToplevelIdentity& window, ProcessId process) {
    for (const std::string& id :
         {window.applicationId, window.instance, lowered(window.instance)}) {
        if (auto found = entry(id))
            return *found;
    }
    if (auto found = entryByStartupClass(window))
        return *found;
    for (const std::string& id : {window.className, lowered(window.className)}) {
        if (auto found = entry(id))
            return *found;
    }
    if (auto found = entryThatLaunched(process))
        return *found;

    Identity nameless;
    nameless.name = window.className.empty() ? window.instance : window.className;
    if (nameless.name.empty()) {
        const auto stat = readProcessStat(process);
        nameless.name = stat ? utf8(stat->command) : "";
    }
    return nameless;
}

std::optional<Identity> DesktopEntries::entry(const std::string& id) {
    if (id.empty() || id.find('/') != std::string::npos || id.find('\0') != std::string::npos)
        return std::nullopt;
    const AppInfo info(g_desktop_app_info_new((id + std::string(suffix)).c_str()));
    return info ? identityOf(info.get()) : std::nullopt;
}

std::optional<Identity> DesktopEntries::entryByStartupClass(const ToplevelIdentity& window) {
    if (isOutdated_)
        indexStartupClasses();
    for (const std::string& name : {window.className, window.instance}) {
        const auto found = idsByStartupClass_.find(lowered(name));
        if (!name.empty() && found != idsByStartupClass_.end())
            return entry(found->second);
    }
    return std::nullopt;
}

/// A child inherits the variables of its parent: they are its own only with its own process id.
std::optional<Identity> DesktopEntries::entryThatLaunched(ProcessId process) {
    const auto launched = processEnvironment(process, "GIO_LAUNCHED_DESKTOP_FILE_PID");
    const auto file = processEnvironment(process, "GIO_LAUNCHED_DESKTOP_FILE");
    if (!file || launched != std::to_string(process))
        return std::nullopt;
    const AppInfo info(g_desktop_app_info_new_from_filename(file->c_str()));
    return info ? identityOf(info.get()) : std::nullopt;
}

void DesktopEntries::indexStartupClasses() {
    isOutdated_ = false;
    idsByStartupClass_.clear();
    GList* all = g_app_info_get_all();
    for (GList* next = all; next; next = next->next) {
        auto* info = G_DESKTOP_APP_INFO(next->data);
        const char* className = g_desktop_app_info_get_startup_wm_class(info);
        if (!className)
            continue;
        const auto identity = identityOf(info);
        if (identity && identity->id)
            idsByStartupClass_.emplace(lowered(className), *identity->id);
    }
    g_list_free_full(all, g_object_unref);
}

} // namespace velmorquit
