#pragma once

#include "Platform/Value.h"

#include <optional>
#include <string>
#include <string_view>

/// Values as property lists. Everything here may be called on any thread and in any locale.
namespace velmorquit::PropertyList {

/// `value` as an XML property list that `decode` can read completely. Dates lose their fraction of
/// a second, and values nested in more than 100 arrays and dictionaries are left out. Control
/// characters, invalid UTF-8, infinities and "not a number" are kept, though other readers may
/// reject them.
[[nodiscard]] std::string encode(const Value& value);

/// The value of an XML or binary property list; none if `list` is empty, cut short, damaged, no
/// property list, or larger than the limits in PropertyListLimits.h. No input does more harm than
/// that.
///
/// An element of a type that Value lacks (a UID), or nested in more than 100 others, is left out,
/// so that one foreign entry doesn't cost all the others; a whole list of such a type is none.
/// Integers are read as signed 64-bit numbers; dates lose their fraction of a second, and those
/// before 1677 or after 2262 become that limit.
[[nodiscard]] std::optional<Value> decode(std::string_view list);

} // namespace velmorquit::PropertyList
