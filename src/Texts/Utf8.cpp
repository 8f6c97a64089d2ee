#include "Texts/Utf8.h"

#include <array>

namespace velmorquit {

Utf8Character firstCharacter(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byte(0);
    const std::size_t length = first < 0x80                     ? 1
                               : first >= 0xC2 && first <= 0xDF ? 2
                               : first >= 0xE0 && first <= 0xEF ? 3
                               : first >= 0xF0 && first <= 0xF4 ? 4
                                                                : 0;
    constexpr std::array<char32_t, 5> leading{0, 0x7F, 0x1F, 0x0F, 0x07};
    constexpr std::array<char32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
    char32_t code = first & leading.at(length);
    std::size_t size = 1;
    while (size < length && size < text.size() && (byte(size) & 0xC0) == 0x80)
        code = code << 6 | (byte(size++) & 0x3FU);
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    const bool isWhole = length > 0 && size == length && code >= least.at(length);
    return {code, size, isWhole && !isSurrogate && code <= 0x10FFFF};
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const Utf8Character first = firstCharacter(text);
        if (!first.isValid)
            return false;
        text.remove_prefix(first.size);
    }
    return true;
}

} // namespace velmorquit
