#pragma once

#include <cstddef>
#include <string_view>

namespace velmorquit {

/// What a text begins with.
struct Utf8Character {
    char32_t code = 0;
    /// Bytes of the character, or as many as were begun well, at least one, where there is none.
    std::size_t size = 1;
    bool isValid = false;
};

/// By RFC 3629: no longer form than needed, no half of a surrogate pair, nothing beyond U+10FFFF.
/// `text` isn't empty.
[[nodiscard]] Utf8Character firstCharacter(std::string_view text);

[[nodiscard]] bool isUtf8(std::string_view text);

} // namespace velmorquit
