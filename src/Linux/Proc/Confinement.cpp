#include "Linux/Proc/Confinement.h"

#include "Linux/Proc/ControlGroup.h"

#include <algorithm>
#include <vector>

#include <unistd.h>

namespace velmorquit {

namespace {

/// Takes the first word off the line.
std::string_view nextWord(std::string_view& line) {
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return word;
}

/// Without characters that could make the user read something else.
std::string harmless(std::string_view name) {
    constexpr std::size_t most = 60;
    std::string text;
    for (const char letter : name.substr(0, most)) {
        const bool isPlain = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                             (letter >= '0' && letter <= '9') ||
                             std::string_view("._+-").find(letter) != std::string_view::npos;
        text += isPlain ? letter : '_';
    }
    return name.size() > most ? text + "…" : text;
}

std::string nameOf(std::string_view unit, std::string_view executable) {
    if (std::string id = sandboxedApplication(unit); !id.empty())
        return harmless(id);
    const auto entries = desktopEntriesOfUnit(unit);
    const std::string_view file = unit.substr(unit.rfind('/') + 1);
    if (file.starts_with("snap.") && !entries.empty())
        return harmless(entries.front());
    return harmless(executable.substr(executable.rfind('/') + 1));
}

bool sharesNamespace(ProcessId process, const char* kind, const ProcDirectory& proc) {
    return proc.link(process, kind) == proc.link(::getpid(), kind);
}

// A mount namespace of its own says little: services have one to hide a folder or two. A real
// sandbox also makes sure that its programs can't gain privileges.
bool sharesRoot(ProcessId process, const ProcDirectory& proc) {
    const std::string root = proc.link(process, "root");
    if (root.empty() || root != proc.link(::getpid(), "root"))
        return false;
    if (sharesNamespace(process, "ns/mnt", proc))
        return true;
    if (proc.read(process, "status").find("\nNoNewPrivs:\t1\n") != std::string::npos)
        return false;
    const std::string its = rootMount(proc.read(process, "mountinfo"));
    return !its.empty() && its == rootMount(proc.read(::getpid(), "mountinfo"));
}

std::string_view trimmedLabel(std::string_view label) {
    while (!label.empty() && (label.back() == '\0' || label.back() == '\n'))
        label.remove_suffix(1);
    return label;
}

// Some labels confine nothing: unconfined programs, labels that are merely logged (as for programs
// in a classic snap), and a label that this program has as well (as in a container).
bool isHeld(std::string_view label, std::string_view own) {
    label = trimmedLabel(label);
    if (label.empty() || label == trimmedLabel(own) || label.ends_with(" (complain)") ||
        label.ends_with("unconfined") || label.ends_with(" (unconfined)"))
        return false;
    return label.starts_with("snap.") || label.ends_with(')');
}

} // namespace

std::string rootMount(std::string_view mountinfo) {
    std::string found;
    while (!mountinfo.empty()) {
        const std::size_t end = std::min(mountinfo.find('\n'), mountinfo.size());
        std::string_view line = mountinfo.substr(0, end);
        mountinfo.remove_prefix(std::min(end + 1, mountinfo.size()));
        nextWord(line);
        nextWord(line);
        const std::string_view device = nextWord(line);
        const std::string_view folder = nextWord(line);
        // The last mount is on top.
        if (nextWord(line) == "/")
            found = std::string(device) + ' ' + std::string(folder);
    }
    return found;
}

Confinement confinementOf(ProcessId process, std::string_view label, const ProcDirectory& proc) {
    if (process <= 0)
        return {};
    std::string executable = proc.link(process, "exe");
    // The file was replaced by an update since the start.
    constexpr std::string_view replaced = " (deleted)";
    if (executable.ends_with(replaced))
        executable.resize(executable.size() - replaced.size());
    const std::string own = proc.read(::getpid(), "attr/current");
    const std::string cgroup = proc.read(process, "cgroup");
    const std::string_view unit = applicationUnit(cgroup);
    const std::string_view unitName = unit.substr(unit.rfind('/') + 1);
    // A classic snap has no mounts of its own, nor any other confinement.
    const bool isStrictSnap =
        unitName.starts_with("snap.") && !sharesNamespace(process, "ns/mnt", proc);
    const bool isFree = !executable.empty() && !proc.link(process, "ns/mnt").empty() &&
                        sharesNamespace(process, "ns/user", proc) &&
                        sharesNamespace(process, "ns/pid", proc) && sharesRoot(process, proc) &&
                        !executable.ends_with("/xdg-dbus-proxy") &&
                        sandboxedApplication(unit).empty() && !isStrictSnap &&
                        !isHeld(label, own) && !isHeld(proc.read(process, "attr/current"), own);
    return {.isConfined = !isFree, .name = nameOf(unit, executable)};
}

} // namespace velmorquit
