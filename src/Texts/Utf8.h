#pragma once

#include <cstddef>
#include <string_view>

namespace velmorquit {

/// The beginning of a text.
struct Utf8Character {
    char32_t code = 0;
    /// Bytes of the character; if invalid, of its well-formed beginning, at least one.
    std::size_t size = 1;
    bool isValid = false;
};

/// By RFC 3629: no overlong forms, no halves of surrogate pairs, nothing beyond U+10FFFF. `text`
/// isn't empty.
[[nodiscard]] Utf8Character firstCharacter(std::string_view text);

[[nodiscard]] bool isUtf8(std::string_view text);

} // namespace velmorquit
