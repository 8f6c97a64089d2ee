#pragma once

#include "Linux/Applications/ProgramEntries.h"
#include "Linux/Windows/ToplevelSource.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

using GAppInfoMonitor = struct _GAppInfoMonitor;

namespace velmorquit {

/// What identifies a program.
struct Identity {
    /// What it rests on, the worst first.
    enum class Basis {
        makeshift, ///< whatever is there that may pass for a name
        ownWord,   ///< a word with which its window names the program
        entry,     ///< a desktop entry
    };

    /// The desktop entry's id, without ".desktop"; else what the program is known by across starts
    /// where that isn't its name.
    std::optional<std::string> id;
    std::string name;      ///< in the user's language; empty when nothing gives one
    std::string path;      ///< the desktop entry's file; empty without one
    std::string iconName;  ///< in the icon theme; empty when the entry gives none
    std::string iconFile;  ///< absolute path; empty when the entry gives none
    bool isHidden = false; ///< the entry is not for the user's eyes
    Basis basis = Basis::entry;
    /// What its window alone would be known by, where that is something else; else empty.
    std::string windowKey = {};

    /// What the exclusions know it by.
    [[nodiscard]] const std::string& key() const { return id ? *id : name; }
};

/// What is known of a process besides the names that its window gives.
struct Evidence {
    /// The ids of the entries from which it may have been started.
    std::vector<std::string> started = {};
    RunProgram program = {};
    /// Of its window. Asked only where it counts; may be empty.
    std::function<std::string()> title = {};
};

/// The desktop entries that are installed.
class DesktopEntries {
public:
    DesktopEntries();
    DesktopEntries(const DesktopEntries&) = delete;
    DesktopEntries& operator=(const DesktopEntries&) = delete;
    ~DesktopEntries();

    /// The entry that a window of that process means, else a name alone.
    [[nodiscard]] Identity identify(const ToplevelIdentity& window, ProcessId process,
                                    const Evidence& evidence = {});

    /// What the entry in that file says; none when it is no entry. Quick.
    [[nodiscard]] static std::optional<Identity> identityIn(const std::string& file);

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
    [[nodiscard]] std::optional<Identity> entryByProgram(const RunProgram& program);
    [[nodiscard]] static Identity withoutEntry(const ToplevelIdentity& window, ProcessId process,
                                               const Evidence& evidence);
    void indexStartupClasses();

    /// From the StartupWMClass that an entry states, in lower case, to that entry.
    std::map<std::string, ClassOwner> ownersOfStartupClass_;
    ProgramEntries programs_;
    bool areProgramsOutdated_ = true;
    /// GLib says when entries are installed or removed.
    GAppInfoMonitor* monitor_;
    bool isOutdated_ = true;
};

} // namespace velmorquit
