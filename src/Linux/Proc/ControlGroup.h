#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

// Information on a process from the service manager's units, read from `/proc/PID/cgroup`.

/// The application unit that a process is in: the path of the control group of an `app-….scope`, an
/// `app-….service` or a `snap.….scope`; empty when it is in none.
[[nodiscard]] std::string_view applicationUnit(std::string_view cgroup);

/// The application's id if that unit is a sandbox in which a broker represents it on the session
/// bus, else empty.
[[nodiscard]] std::string sandboxedApplication(std::string_view applicationUnit);

/// The desktop entries, without ".desktop", that the unit's name may stand for, most likely first:
/// the maker of a unit may put their own name in front of the entry's.
[[nodiscard]] std::vector<std::string> desktopEntriesOfUnit(std::string_view applicationUnit);

/// Whether the process is one of the programs that were started along with the session.
[[nodiscard]] bool isAutostarted(std::string_view cgroup);

/// Whether the process is a background service of the user's session: one that the session or its
/// bus has started and would start again, and that isn't an application.
[[nodiscard]] bool isUserService(std::string_view cgroup);

} // namespace velmorquit
