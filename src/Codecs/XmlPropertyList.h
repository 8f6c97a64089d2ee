#pragma once

#include "Platform/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace velmorquit::PropertyList {

/// The value of a list in XML, as `decode` reads it.
[[nodiscard]] std::optional<Value> decodeXml(std::string_view list);

/// `value` in XML, as `encode` writes it.
[[nodiscard]] std::string encodeXml(const Value& value);

} // namespace velmorquit::PropertyList
