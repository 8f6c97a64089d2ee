#pragma once

#include "Linux/Applications/ToplevelSource.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

using GAppInfoMonitor = struct _GAppInfoMonitor;

namespace velmorquit {

/// What identifies a program.
struct Identity {
    std::optional<std::string> id; ///< the desktop entry's id, without ".desktop"
    std::string name;              ///< in the user's language; empty when nothing gives one
    std::string path;              ///< the desktop entry's file; empty without one
    std::string iconName;          ///< in the icon theme; empty when the entry gives none
    std::string iconFile;          ///< absolute path; empty when the entry gives none
    bool isHidden = false;         ///< the entry is not for the user's eyes

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

    /// The entry that a window of that process means, else a name alone. `started` are the ids of
    /// the entries from which the process may have been started.
    [[nodiscard]] Identity identify(const ToplevelIdentity& window, ProcessId process,
                                    const std::vector<std::string>& started);

    /// The icon that the entry in that file gives; an empty one when it gives none.
    [[nodiscard]] static Icon iconOf(const std::string& path);

private:
    struct ClassOwner {
        std::string id;
        bool isHidden = false;
    };

    [[nodiscard]] static std::optional<Identity> entry(const std::string& id);
    [[nodiscard]] std::optional<Identity> entryByStartupClass(const ToplevelIdentity& window);
    [[nodiscard]] static std::optional<Identity> entryThatLaunched(ProcessId process);
    void indexStartupClasses();

    /// From the StartupWMClass that an entry states, in lower case, to that entry.
    std::map<std::string, ClassOwner> ownersOfStartupClass_;
    /// GLib says when entries are installed or removed.
    GAppInfoMonitor* monitor_;
    bool isOutdated_ = true;
};

} // namespace velmorquit
