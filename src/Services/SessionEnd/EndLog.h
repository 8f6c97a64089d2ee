#pragma once

#include "Platform/LoginWindow.h"

#include <string>
#include <vector>

/// What the log says of the end of the session: no language is chosen there.
namespace velmorquit::EndLog {

[[nodiscard]] std::string name(LoginRequest request);

/// The obstacles by name, separated by commas.
[[nodiscard]] std::string text(const std::vector<EndObstacle>& obstacles);

} // namespace velmorquit::EndLog
