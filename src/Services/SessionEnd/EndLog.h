#pragma once

#include "Platform/LoginWindow.h"

#include <string>
#include <vector>

/// The log's texts on the end of the session; the log isn't translated.
namespace velmorquit::EndLog {

[[nodiscard]] std::string name(LoginRequest request);

/// The obstacles by name, separated by commas.
[[nodiscard]] std::string text(const std::vector<EndObstacle>& obstacles);

} // namespace velmorquit::EndLog
