#pragma once

#include <algorithm>
#include <string_view>

/// Comparing names that a user types. Only ASCII letters are compared without regard to case.
namespace velmorquit::remote {

[[nodiscard]] constexpr char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

[[nodiscard]] inline bool isSameName(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, {}, lowered, lowered);
}

/// Whether the name begins with `shortened`.
[[nodiscard]] inline bool isShortFor(std::string_view shortened, std::string_view name) {
    return !shortened.empty() && isSameName(shortened, name.substr(0, shortened.size()));
}

} // namespace velmorquit::remote
