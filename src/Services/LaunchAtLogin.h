#pragma once

#include "Platform/LoginItem.h"
#include "Platform/SystemLog.h"

#include <optional>
#include <string>
#include <vector>

namespace velmorquit::LaunchAtLogin {

/// Switches the login item and returns its new status. A failure goes to the log and nowhere else.
LoginItemStatus set(LoginItem& item, SystemLog& log, bool enabled);

/// The status as text for the user.
[[nodiscard]] std::string describe(LoginItemStatus status);

/// Obeys the first of the switches `--enable-launch-at-login` and `--disable-launch-at-login`
/// (in this order, not that of the arguments), and returns the line to print; none without a
/// switch.
[[nodiscard]] std::optional<std::string> runSwitches(const std::vector<std::string>& arguments,
                                                     LoginItem& item, SystemLog& log);

} // namespace velmorquit::LaunchAtLogin
