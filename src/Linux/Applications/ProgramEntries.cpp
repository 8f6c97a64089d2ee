#include "Linux/Applications/ProgramEntries.h"

#include "Linux/Text/Utf8.h"

#include <gio/gdesktopappinfo.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace velmorquit {

namespace {

namespace fs = std::filesystem;

std::string realPathOf(const std::string& program) {
    char* found = g_find_program_in_path(program.c_str());
    if (!found)
        return "";
    std::error_code error;
    const fs::path real = fs::canonical(found, error);
    g_free(found);
    return error ? "" : real.string();
}

std::string textOf(GDesktopAppInfo* info, const char* key) {
    char* text = g_desktop_app_info_get_string(info, key);
    std::string copy = text ? text : "";
    g_free(text);
    return copy;
}

/// Whether the process was started with all of the entry's arguments.
bool hasAll(const std::vector<std::string>& arguments, const std::vector<std::string>& wanted) {
    return std::ranges::all_of(wanted, [&](const std::string& one) {
        return std::ranges::find(arguments, one) != arguments.end();
    });
}

} // namespace

std::vector<std::string> commandOfEntry(const char* line) {
    std::vector<std::string> command;
    char** parts = nullptr;
    if (!line || !g_shell_parse_argv(line, nullptr, &parts, nullptr))
        return command;
    for (char** next = parts; *next; ++next) {
        const std::string part = *next;
        const bool isOfEnv =
            part == "env" || part.ends_with("/env") || part.find('=') != std::string::npos;
        const bool isFieldCode = part.size() == 2 && part.front() == '%';
        if (!isFieldCode && !(command.empty() && isOfEnv))
            command.push_back(part);
    }
    g_strfreev(parts);
    return command;
}

void ProgramEntries::index() {
    byPath_.clear();
    byName_.clear();
    GList* all = g_app_info_get_all();
    for (GList* next = all; next; next = next->next) {
        auto* info = G_DESKTOP_APP_INFO(next->data);
        GAppInfo* app = G_APP_INFO(info);
        const char* id = g_app_info_get_id(app);
        const bool isInNoMenu = g_desktop_app_info_get_nodisplay(info) != 0;
        const bool opensFiles =
            g_app_info_supports_files(app) != 0 || g_app_info_supports_uris(app) != 0;
        // A program that runs in a terminal has no windows: its namesake with windows is meant.
        if (!id || (isInNoMenu && !opensFiles) ||
            g_desktop_app_info_get_boolean(info, G_KEY_FILE_DESKTOP_KEY_TERMINAL))
            continue;
        const std::string file = utf8(id);
        Owner owner{file.substr(0, file.rfind(".desktop")), {}, isInNoMenu};
        const std::vector<std::string> command = commandOfEntry(g_app_info_get_commandline(app));
        if (!command.empty()) {
            const RunProgram program = programOf(realPathOf(command.front()), command,
                                                 textOf(info, G_KEY_FILE_DESKTOP_KEY_PATH));
            owner.arguments = program.arguments;
            add(program, command.front(), owner);
        }
        const std::string tried = textOf(info, G_KEY_FILE_DESKTOP_KEY_TRY_EXEC);
        if (!tried.empty())
            add(programOf(realPathOf(tried), {tried}, ""), tried, owner);
    }
    g_list_free_full(all, g_object_unref);
}

void ProgramEntries::add(const RunProgram& program, const std::string& calledBy,
                         const Owner& owner) {
    if (program.isUnknown())
        return;
    const auto addTo = [&](std::vector<Owner>& owners) {
        if (std::ranges::find(owners, owner.id, &Owner::id) == owners.end())
            owners.push_back(owner);
    };
    if (!program.path.empty())
        addTo(byPath_[program.path]);
    addTo(byName_[lowered(program.name)]);
    const std::string name = withoutExtension(calledBy.substr(calledBy.rfind('/') + 1));
    if (!isCommonName(name))
        addTo(byName_[lowered(utf8(name))]);
}

const ProgramEntries::Owner* ProgramEntries::ownerIn(const Owners& owners, const std::string& key) {
    const auto found = owners.find(key);
    if (found == owners.end())
        return nullptr;
    const Owner* best = nullptr;
    bool isAmbiguous = false;
    for (const Owner& owner : found->second) {
        if (!best || (best->isInNoMenu && !owner.isInNoMenu)) {
            best = &owner;
            isAmbiguous = false;
        } else if (best->isInNoMenu == owner.isInNoMenu) {
            isAmbiguous |= best->arguments != owner.arguments;
            best = std::min(best, &owner, [](const Owner* one, const Owner* other) {
                return one->id < other->id;
            });
        }
    }
    return isAmbiguous ? nullptr : best;
}

// The name counts as well, since programs are started through scripts in other places.
std::optional<std::string> ProgramEntries::entryOf(const RunProgram& program) const {
    if (program.isUnknown())
        return std::nullopt;
    const Owner* owner = nullptr;
    if (byPath_.contains(program.path))
        owner = ownerIn(byPath_, program.path);
    else if (!isCommonName(program.name))
        owner = ownerIn(byName_, lowered(program.name));
    // With fewer arguments, the entry would reopen a different program.
    if (!owner || !hasAll(program.arguments, owner->arguments))
        return std::nullopt;
    return owner->id;
}

} // namespace velmorquit
