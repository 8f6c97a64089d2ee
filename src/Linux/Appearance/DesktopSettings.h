#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>

namespace velmorquit {

/// Settings that a program of the desktop publishes, by their names. Yes and no are 1 and 0.
using DesktopSettings = std::map<std::string, std::variant<std::int64_t, std::string>>;

} // namespace velmorquit
