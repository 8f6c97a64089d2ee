#pragma once

#include <cstddef>

/// How much of a property list is read. What others write may say that it is larger than it is, and
/// a few bytes of the binary form can stand for more values than any memory holds.
namespace velmorquit::PropertyList {

/// Bytes of a list that is read at all: preferences are some kilobytes, ten thousand backups two
/// million.
inline constexpr std::size_t largestList = 4 << 20;
/// Arrays and dictionaries around a value, at most. What lies deeper is left out.
inline constexpr int deepestNesting = 100;
/// Values in one list, keys among them, at most.
inline constexpr int mostValues = 100'000;
/// Bytes of all texts, keys and data of one list, at most; those of a value that the list uses
/// several times count as often.
inline constexpr std::size_t mostBytes = largestList;

} // namespace velmorquit::PropertyList
