#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

// What the service manager's units tell of a process. All of it from what `/proc/PID/cgroup` holds.

/// The unit of one application that a process is in: the path of the control group of an
/// `app-….scope`, an `app-….service` or a `snap.….scope`; empty when it is in none.
[[nodiscard]] std::string_view applicationUnit(std::string_view cgroup);

/// The id of the application if that unit has a sandbox around it in which a broker stands in for
/// it on the session bus, else empty.
[[nodiscard]] std::string sandboxedApplication(std::string_view applicationUnit);

/// The desktop entries, without ".desktop", that the name of such a unit may mean, most likely
/// first: whoever makes units may put their own name in front of the entry's.
[[nodiscard]] std::vector<std::string> desktopEntriesOfUnit(std::string_view applicationUnit);

/// Whether the process was started with the session, as one of the programs that are to be.
[[nodiscard]] bool isAutostarted(std::string_view cgroup);

/// Whether the process is a background service of the user's session: one that the session or its
/// bus has started, and will start again, without being an application of its own.
[[nodiscard]] bool isUserService(std::string_view cgroup);

} // namespace velmorquit
