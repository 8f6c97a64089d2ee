#pragma once

#include "Platform/LoginItem.h"
#include "Platform/SystemLog.h"

#include <optional>
#include <string>
#include <vector>

namespace velmorquit::LaunchAtLogin {

/// Switches the login item and returns what it is then. A failure is in the log and nowhere else.
LoginItemStatus set(LoginItem& item, SystemLog& log, bool enabled);

/// The status for a person.
[[nodiscard]] std::string describe(LoginItemStatus status);

/// Does what the switches `--enable-launch-at-login` and `--disable-launch-at-login` among the
/// arguments say, the first of these whatever their order, and returns the line to print; none
/// without a switch.
[[nodiscard]] std::optional<std::string> runSwitches(const std::vector<std::string>& arguments,
                                                     LoginItem& item, SystemLog& log);

} // namespace velmorquit::LaunchAtLogin
