#pragma once

#include "Platform/Value.h"

#include <optional>
#include <string>
#include <string_view>

/// Values as property lists. Everything here may be called on any thread and under any locale.
namespace velmorquit::PropertyList {

/// `value` as an XML property list, all of it readable by `decode`. Of dates the fraction of a
/// second is dropped, and what is nested in more than 100 arrays and dictionaries is left out.
/// Control characters, texts that are no UTF-8, infinities and "not a number" are kept, which other
/// readers may not take.
[[nodiscard]] std::string encode(const Value& value);

/// The value that an XML or binary property list holds; none when `list` is empty, cut short,
/// damaged or no property list, or larger than PropertyListLimits.h says. No bytes whatever do more
/// harm than that.
///
/// An element of a type that Value lacks (a UID) or that is nested in more than 100 others is left
/// out, so that one foreign entry doesn't cost all the others; a whole list of such a type is none.
/// Integers are taken as signed 64-bit numbers; of dates the fraction of a second is dropped, and
/// those before 1677 or after 2262 become that limit.
[[nodiscard]] std::optional<Value> decode(std::string_view list);

} // namespace velmorquit::PropertyList
