#pragma once

#include "Linux/Applications/ToplevelSource.h"

#include <map>
#include <optional>
#include <string>

using GAppInfoMonitor = struct _GAppInfoMonitor;

namespace velmorquit {

/// What identifies a program.
struct Identity {
    std::optional<std::string> id; ///< the desktop entry's id, without ".desktop"
    std::string name;              ///< in the user's language; empty when nothing gives one
    std::string path;              ///< the desktop entry's file; empty without one

    /// What the exclusions know it by.
    [[nodiscard]] const std::string& key() const { return id ? *id : name; }
};

/// The desktop entries that are installed.
class DesktopEntries {
public:
    DesktopEntries();
    DesktopEntries(const DesktopEntries&) = delete;
    DesktopEntries& operator=(const DesktopEntries&) = delete;
    ~DesktopEntries();

    /// The entry that a window of that process means, else a name alone.
    [[nodiscard]] Identity identify(const ToplevelIdentity& window, ProcessId process);

private:
    [[nodiscard]] static std::optional<Identity> entry(const std::string& id);
    [[nodiscard]] std::optional<Identity> entryByStartupClass(const ToplevelIdentity& window);
    [[nodiscard]] static std::optional<Identity> entryThatLaunched(ProcessId process);
    void indexStartupClasses();

    /// From the StartupWMClass that an entry states, in lower case, to that entry's id.
    std::map<std::string, std::string> idsByStartupClass_;
    /// GLib says when entries are installed or removed.
    GAppInfoMonitor* monitor_;
    bool isOutdated_ = true;
};

} // namespace velmorquit
