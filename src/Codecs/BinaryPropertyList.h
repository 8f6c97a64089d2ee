#pragma once

#include "Platform/Value.h"

#include <optional>
#include <string_view>

namespace velmorquit::PropertyList {

[[nodiscard]] bool isBinary(std::string_view list);

/// The value of a list in the binary form, as `decode` reads it.
[[nodiscard]] std::optional<Value> decodeBinary(std::string_view list);

} // namespace velmorquit::PropertyList
