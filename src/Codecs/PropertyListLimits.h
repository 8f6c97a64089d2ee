#pragma once

#include <cstddef>

/// How much of a property list is read. A list from elsewhere may claim to be larger than it is,
/// and a few bytes of the binary form can stand for more values than fit into memory.
namespace velmorquit::PropertyList {

/// The largest list that is read at all, in bytes: preferences take some kilobytes, ten thousand
/// backups two million.
inline constexpr std::size_t largestList = 4 << 20;
/// The most arrays and dictionaries around a value. Deeper values are left out.
inline constexpr int deepestNesting = 100;
/// The most values in one list, including keys.
inline constexpr int mostValues = 100'000;
/// The most bytes in all texts, keys and data of one list; those of a value that the list uses
/// several times count as often.
inline constexpr std::size_t mostBytes = largestList;

} // namespace velmorquit::PropertyList
