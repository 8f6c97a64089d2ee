#pragma once

#include "Loop/Handle.h"
#include "Platform/RunningApplication.h"

#include <algorithm>
#include <compare>
#include <functional>
#include <initializer_list>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace velmorquit {

/// What happens among the running applications.
enum class WorkspaceEvent {
    launched,     ///< an application came, or showed its first window
    terminated,   ///< an application's process ended
    activated,    ///< another application is in front now, or none of them any more
    policyChanged ///< one that lives on showed or lost its last window, or is better known now
};

/// A change of one of them.
struct WorkspaceChange {
    WorkspaceEvent event;
    ProcessId process; ///< whose it is; 0 when none of them is in front any more

    friend auto operator<=>(const WorkspaceChange&, const WorkspaceChange&) = default;
};

/// All that were noticed in one turn.
using WorkspaceChanges = std::set<WorkspaceChange>;

[[nodiscard]] inline bool hasAnyOf(const WorkspaceChanges& changes,
                                   std::initializer_list<WorkspaceEvent> events) {
    return std::ranges::any_of(changes, [&](const WorkspaceChange& change) {
        return std::ranges::find(events, change.event) != events.end();
    });
}

/// Whether all windows of the session can be seen.
enum class Sight {
    all,
    noWindowList,   ///< nobody on this display lists its windows
    incomplete,     ///< more windows than are looked at, or too few file descriptors for all
    anotherDisplay, ///< the session has a display of another kind, whose windows aren't seen
};

/// The applications of the user's session.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// All that run, those without windows too, in the system's own order, ended ones left out.
    [[nodiscard]] virtual std::vector<std::shared_ptr<RunningApplication>>
    runningApplications() = 0;

    /// How much of the session is seen now: where that is not all, nothing can be said to be
    /// closed.
    [[nodiscard]] virtual Sight sight() = 0;

    /// The running application that the user worked with last; null when that is none of them.
    [[nodiscard]] virtual std::shared_ptr<RunningApplication> frontmostApplication() const = 0;

    /// Calls `told` on the main loop after what happened, once for all that was noticed together.
    [[nodiscard]] virtual Handle observe(std::function<void(const WorkspaceChanges&)> told) = 0;

    /// Starts the application of that file in the background: it is not brought to the front.
    /// Returns at once; a failure is not told.
    virtual void open(const std::string& path) = 0;

    /// The icon of the application that this file starts; an empty one when it has none. Never
    /// null. Reads the file.
    [[nodiscard]] virtual std::shared_ptr<const Icon> icon(const std::string& path) const = 0;

    /// Exclusion keys that this system's own essential applications have, such as its file
    /// managers: left running until the user says otherwise.
    [[nodiscard]] virtual std::vector<std::string> defaultExclusions() const = 0;
};

} // namespace velmorquit
