#include "Linux/Applications/DesktopEntries.h"

#include "Linux/Applications/MakeshiftName.h"
#include "Linux/Proc/ProcessStat.h"
#include "Linux/Text/Utf8.h"

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

void takeIcon(Identity& identity, GIcon* icon) {
    if (icon && G_IS_THEMED_ICON(icon)) {
        const char* const* names = g_themed_icon_get_names(G_THEMED_ICON(icon));
        identity.iconName = names && *names ? utf8(*names) : "";
    } else if (icon && G_IS_FILE_ICON(icon)) {
        char* file = g_file_get_path(g_file_icon_get_file(G_FILE_ICON(icon)));
        identity.iconFile = file ? file : "";
        g_free(file);
    }
}

std::optional<Identity> identityOf(GDesktopAppInfo* info) {
    const char* id = g_app_info_get_id(G_APP_INFO(info));
    const char* file = g_desktop_app_info_get_filename(info);
    const char* name = g_app_info_get_display_name(G_APP_INFO(info));
    if (!file)
        return std::nullopt;
    // An entry opened by its path has no id: its file name is the best substitute.
    std::string base = id ? id : std::string(file).substr(std::string(file).rfind('/') + 1);
    if (base.ends_with(suffix))
        base.resize(base.size() - suffix.size());
    Identity identity;
    identity.id = utf8(base);
    identity.name = utf8(name ? name : base);
    identity.path = file;
    // A program that opens files is for the user; it is merely not in the menu.
    const bool opensFiles = g_app_info_supports_files(G_APP_INFO(info)) != 0 ||
                            g_app_info_supports_uris(G_APP_INFO(info)) != 0;
    identity.isHidden = g_desktop_app_info_get_nodisplay(info) != 0 && !opensFiles;
    takeIcon(identity, g_app_info_get_icon(G_APP_INFO(info)));
    return identity;
}

} // namespace

DesktopEntries::DesktopEntries() : monitor_(g_app_info_monitor_get()) {
    const auto changed =
        +[](DesktopEntries* self) { self->isOutdated_ = self->areProgramsOutdated_ = true; };
    g_signal_connect_swapped(monitor_, "changed", G_CALLBACK(changed), this);
}

std::optional<Identity> DesktopEntries::identityIn(const std::string& file) {
    const AppInfo info(g_desktop_app_info_new_from_filename(file.c_str()));
    return info ? identityOf(info.get()) : std::nullopt;
}

Icon DesktopEntries::iconOf(const std::string& path) {
    GDesktopAppInfo* info = g_desktop_app_info_new_from_filename(path.c_str());
    if (!info)
        return {};
    Identity identity;
    takeIcon(identity, g_app_info_get_icon(G_APP_INFO(info)));
    g_object_unref(info);
    return {identity.iconName, identity.iconFile, {}};
}

DesktopEntries::~DesktopEntries() {
    g_signal_handlers_disconnect_by_data(monitor_, this);
    g_object_unref(monitor_);
}

// Entries meant for the user are preferred to others, such as that of a helper with the name of its
// program.
Identity DesktopEntries::identify(const ToplevelIdentity& window, ProcessId process,
                                  const Evidence& evidence) {
    std::optional<Identity> hidden;
    std::optional<Identity> shown;
    const auto consider = [&](std::optional<Identity> found) {
        if (found && found->isHidden && !hidden)
            hidden = std::move(found);
        else if (found && !found->isHidden && !shown)
            shown = std::move(found);
        return shown.has_value();
    };
    const auto considerAll = [&](const std::vector<std::string>& ids) {
        return std::ranges::any_of(ids, [&](const std::string& id) { return consider(entry(id)); });
    };
    if (consider(entryThatLaunched(process)) || considerAll(evidence.started) ||
        considerAll({window.applicationId, window.instance, lowered(window.instance)}) ||
        consider(entryByStartupClass(window)) ||
        considerAll({window.className, lowered(window.className)}))
        return *shown;
    if (hidden)
        return *hidden;

    if (auto found = entryByProgram(evidence.program)) {
        found->windowKey = window.className.empty() ? window.instance : window.className;
        return *found;
    }
    return withoutEntry(window, process, evidence);
}

// A word that the program has given its window is the best name: it is the same at every start,
// and spelled as its makers spell it, while a title changes with its content and a file may be
// called anything. Without such a word, the first choice is the part of the title that seems to
// be no document. It may be another part at the next start, so the key for exclusions is then
// the program that runs.
Identity DesktopEntries::withoutEntry(const ToplevelIdentity& window, ProcessId process,
                                      const Evidence& evidence) {
    Identity nameless;
    const std::string& word = window.className.empty() ? window.instance : window.className;
    if (isOwnWord(word)) {
        nameless.basis = Identity::Basis::ownWord;
        nameless.name = word;
        return nameless;
    }
    nameless.basis = Identity::Basis::makeshift;
    nameless.windowKey = word;
    const std::string& program = evidence.program.name;
    const std::string& key = program.empty() ? word : program;
    if (evidence.title)
        nameless.name = programInTitle(evidence.title(), evidence.program, word);
    if (nameless.name.empty())
        nameless.name = key;
    if (nameless.name.empty()) {
        const auto stat = readProcessStat(process);
        nameless.name = stat ? utf8(stat->command) : "";
    }
    if (!key.empty() && key != nameless.name)
        nameless.id = key;
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
        const auto found = ownersOfStartupClass_.find(lowered(name));
        if (!name.empty() && found != ownersOfStartupClass_.end())
            return entry(found->second.id);
    }
    return std::nullopt;
}

std::optional<Identity> DesktopEntries::entryByProgram(const RunProgram& program) {
    if (program.isUnknown())
        return std::nullopt;
    if (areProgramsOutdated_)
        programs_.index();
    areProgramsOutdated_ = false;
    const auto id = programs_.entryOf(program);
    return id ? entry(*id) : std::nullopt;
}

/// Children inherit their parent's variables: these count only if they hold the process's own id.
std::optional<Identity> DesktopEntries::entryThatLaunched(ProcessId process) {
    const auto launched = processEnvironment(process, "GIO_LAUNCHED_DESKTOP_FILE_PID");
    const auto file = processEnvironment(process, "GIO_LAUNCHED_DESKTOP_FILE");
    if (!file || launched != std::to_string(process))
        return std::nullopt;
    return identityIn(*file);
}

void DesktopEntries::indexStartupClasses() {
    isOutdated_ = false;
    ownersOfStartupClass_.clear();
    GList* all = g_app_info_get_all();
    for (GList* next = all; next; next = next->next) {
        auto* info = G_DESKTOP_APP_INFO(next->data);
        const char* className = g_desktop_app_info_get_startup_wm_class(info);
        if (!className)
            continue;
        const auto identity = identityOf(info);
        if (!identity || !identity->id)
            continue;
        ClassOwner& owner = ownersOfStartupClass_[lowered(className)];
        if (owner.id.empty() || (owner.isHidden && !identity->isHidden))
            owner = {*identity->id, identity->isHidden};
    }
    g_list_free_full(all, g_object_unref);
}

} // namespace velmorquit
