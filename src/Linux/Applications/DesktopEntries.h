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

/// Identifies a program.
struct Identity {
    /// The source of the identity, the worst first.
    enum class Basis {
        makeshift, ///< anything that may pass for a name
        ownWord,   ///< a word with which its window names the program
        entry,     ///< a desktop entry
    };

    /// The desktop entry's id, without ".desktop"; else the key that stays the same across starts,
    /// if it isn't the name.
    std::optional<std::string> id;
    std::string name;      ///< in the user's language; empty when nothing gives one
    std::string path;      ///< the desktop entry's file; empty without one
    std::string iconName;  ///< in the icon theme; empty when the entry gives none
    std::string iconFile;  ///< absolute path; empty when the entry gives none
    bool isHidden = false; ///< the entry is not meant for the user
    Basis basis = Basis::entry;
    /// The key that its window alone would give, if that is a different one; else empty.
    std::string windowKey = {};

    /// The key for exclusions.
    [[nodiscard]] const std::string& key() const { return id ? *id : name; }
};

/// What is known of a process besides its window's names.
struct Evidence {
    /// The ids of the entries from which it may have been started.
    std::vector<std::string> started = {};
    RunProgram program = {};
    /// Its window's title, read only when it is needed; may be empty.
    std::function<std::string()> title = {};
};

/// The desktop entries that are installed.
class DesktopEntries {
public:
    DesktopEntries();
    DesktopEntries(const DesktopEntries&) = delete;
    DesktopEntries& operator=(const DesktopEntries&) = delete;
    ~DesktopEntries();

    /// The entry of the program that a window of that process belongs to, or else a name alone.
    [[nodiscard]] Identity identify(const ToplevelIdentity& window, ProcessId process,
                                    const Evidence& evidence = {});

    /// The entry in that file; none when it isn't one. Quick.
    [[nodiscard]] static std::optional<Identity> identityIn(const std::string& file);

    /// The icon of the entry in that file; an empty one when it has none.
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

    /// Entries by the StartupWMClass that they state, in lower case.
    std::map<std::string, ClassOwner> ownersOfStartupClass_;
    ProgramEntries programs_;
    bool areProgramsOutdated_ = true;
    /// GLib tells when entries are installed or removed.
    GAppInfoMonitor* monitor_;
    bool isOutdated_ = true;
};

} // namespace velmorquit
