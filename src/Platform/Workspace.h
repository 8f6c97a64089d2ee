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

/// Kinds of changes among the running applications.
enum class WorkspaceEvent {
    launched,     ///< an application started, or showed its first window
    terminated,   ///< an application's process ended
    activated,    ///< another application came to the front, or none is there now
    policyChanged ///< it goes on, but showed or lost its last window, or is better known now
};

/// A change of one application.
struct WorkspaceChange {
    WorkspaceEvent event;
    ProcessId process; ///< of the application; 0 when none is in front any more

    friend auto operator<=>(const WorkspaceChange&, const WorkspaceChange&) = default;
};

/// All changes noticed in one turn.
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
    noWindowList,   ///< no program on this display lists its windows
    incomplete,     ///< too many windows to look at, or too few file descriptors for all
    anotherDisplay, ///< the session has a display of another kind, whose windows can't be seen
};

/// The applications of the user's session.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// All running ones, also without windows, in the system's order.
    [[nodiscard]] virtual std::vector<std::shared_ptr<RunningApplication>>
    runningApplications() = 0;

    /// How much of the session can be seen now: unless that is all, nothing can be said to be
    /// closed.
    [[nodiscard]] virtual Sight sight() = 0;

    /// The running application that the user worked with last; null if it isn't one of them.
    [[nodiscard]] virtual std::shared_ptr<RunningApplication> frontmostApplication() const = 0;

    /// Calls `told` on the main loop after changes, once for all that were noticed together.
    [[nodiscard]] virtual Handle observe(std::function<void(const WorkspaceChanges&)> told) = 0;

    /// Starts the application of that file in the background, without bringing it to the front.
    /// Returns at once; failures are not reported.
    virtual void open(const std::string& path) = 0;

    /// The icon of the application that this file starts; an empty one if it has none. Never null.
    /// Reads the file.
    [[nodiscard]] virtual std::shared_ptr<const Icon> icon(const std::string& path) const = 0;

    /// Exclusion keys of this system's essential applications, such as its file managers: they are
    /// left running until the user decides otherwise.
    [[nodiscard]] virtual std::vector<std::string> defaultExclusions() const = 0;
};

} // namespace velmorquit
