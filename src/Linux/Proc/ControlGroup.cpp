#include "Linux/Proc/ControlGroup.h"

#include <algorithm>
#include <charconv>

namespace velmorquit {

namespace {

/// The path in the unified hierarchy: the line without a controller.
std::string_view pathOf(std::string_view cgroup) {
    const std::size_t line = cgroup.starts_with("0::") ? 0 : cgroup.find("\n0::");
    if (line == std::string_view::npos)
        return {};
    const std::size_t begin = cgroup.find("::", line) + 2;
    return cgroup.substr(begin, cgroup.find('\n', begin) - begin);
}

bool isApplication(std::string_view name) {
    const bool isScope = name.ends_with(".scope");
    return (name.starts_with("app-") && (isScope || name.ends_with(".service"))) ||
           (name.starts_with("snap.") && isScope);
}

/// Calls `visit(name, end)` for each part of the path until it returns true; `end` is the part's
/// end within the path.
template <class Visit> void eachPart(std::string_view path, Visit visit) {
    for (std::size_t begin = 1; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        if (visit(path.substr(begin, end - begin), end))
            return;
        begin = end + 1;
    }
}

/// Undoes the escapes of unit names: "\x2d" is a hyphen.
std::string unescaped(std::string_view name) {
    std::string text;
    for (std::size_t at = 0; at < name.size(); ++at) {
        unsigned code = 0;
        const char* digits = name.data() + at + 2;
        if (name.substr(at).starts_with("\\x") && at + 4 <= name.size() &&
            std::from_chars(digits, digits + 2, code, 16).ptr == digits + 2) {
            text += static_cast<char>(code);
            at += 3;
        } else {
            text += name[at];
        }
    }
    return text;
}

/// "snap.NAME.APP-UUID": the entry is named NAME_APP.
std::vector<std::string> snapEntry(std::string_view name) {
    constexpr std::size_t uuid = 36;
    name.remove_prefix(std::string_view("snap.").size());
    if (name.size() <= uuid + 1)
        return {};
    name.remove_suffix(uuid + 1);
    std::string entry(name);
    const std::size_t dot = entry.find('.');
    if (dot == std::string::npos)
        return {};
    entry[dot] = '_';
    return {entry};
}

} // namespace

std::string_view applicationUnit(std::string_view cgroup) {
    const std::string_view path = pathOf(cgroup);
    std::string_view found;
    eachPart(path, [&](std::string_view name, std::size_t end) {
        if (isApplication(name))
            found = path.substr(0, end);
        return !found.empty();
    });
    return found;
}

std::string sandboxedApplication(std::string_view applicationUnit) {
    const std::string_view name = applicationUnit.substr(applicationUnit.rfind('/') + 1);
    if (!name.starts_with("app-flatpak-"))
        return {};
    const auto entries = desktopEntriesOfUnit(applicationUnit);
    return entries.size() < 2 ? std::string() : entries[1];
}

// "app[-MAKER]-ENTRY-RANDOM.scope" and "app[-MAKER]-ENTRY[@RANDOM].service". The hyphens of the
// entry's own name should be escaped, but not everybody does so.
std::vector<std::string> desktopEntriesOfUnit(std::string_view applicationUnit) {
    std::string_view name = applicationUnit.substr(applicationUnit.rfind('/') + 1);
    const bool isScope = name.ends_with(".scope");
    name = name.substr(0, name.rfind('.'));
    if (name.starts_with("snap."))
        return snapEntry(name);
    name = name.substr(0, isScope ? name.rfind('-') : std::min(name.find('@'), name.size()));
    std::vector<std::string> entries;
    for (std::size_t hyphen = name.find('-'); hyphen != std::string_view::npos;
         hyphen = name.find('-', hyphen + 1))
        entries.push_back(unescaped(name.substr(hyphen + 1)));
    return entries;
}

bool isAutostarted(std::string_view cgroup) {
    return applicationUnit(cgroup).ends_with("@autostart.service");
}

bool isUserService(std::string_view cgroup) {
    bool isInUserManager = false;
    bool isService = false;
    eachPart(pathOf(cgroup), [&](std::string_view name, std::size_t) {
        if (isApplication(name)) {
            isService = false;
            return true;
        }
        isService |= isInUserManager && name.ends_with(".service");
        isInUserManager |= name.starts_with("user@") && name.ends_with(".service");
        return false;
    });
    return isService;
}

} // namespace velmorquit
