#include "Codecs/XmlBytes.h"

#include <algorithm>
#include <cstdint>

namespace velmorquit::XmlBytes {
namespace {

constexpr char32_t firstStandIn = 0x10F000;

bool isStandIn(char32_t character) {
    return character >= firstStandIn && character <= firstStandIn + 0xFF;
}

bool isAllowed(char32_t character) {
    if (character < 0x20)
        return character == '\t' || character == '\n' || character == '\r';
    return character != 0xFFFE && character != 0xFFFF && !isStandIn(character);
}

struct Decoded {
    char32_t character = 0;
    std::size_t size = 0;
};

/// The character that `bytes` begin with; of size 0 when they begin with none.
Decoded firstOf(std::string_view bytes) {
    const auto byte = [&](std::size_t at) {
        return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80)
        return {lead, 1};
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4)
        return {};
    char32_t character = lead & (0x7FU >> size);
    for (std::size_t at = 1; at < size; ++at) {
        if ((byte(at) & 0xC0) != 0x80)
            return {};
        character = character << 6 | (byte(at) & 0x3F);
    }
    // No longer than it must be, no half of a pair, and not beyond the last one.
    constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    if (character < least[size] || character > 0x10FFFF ||
        (character >= 0xD800 && character <= 0xDFFF))
        return {};
    return {character, size};
}

} // namespace

QString shown(std::string_view bytes) {
    constexpr std::string_view byteOrder = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrder))
        bytes.remove_prefix(byteOrder.size());
    QString text;
    text.reserve(static_cast<qsizetype>(bytes.size()));
    const auto append = [&](char32_t character) {
        if (character < 0x10000)
            text += QChar(static_cast<char16_t>(character));
        else
            (text += QChar::highSurrogate(character)) += QChar::lowSurrogate(character);
    };
    while (!bytes.empty()) {
        const auto [character, size] = firstOf(bytes);
        if (size > 0 && isAllowed(character)) {
            append(character);
            bytes.remove_prefix(size);
            continue;
        }
        const std::size_t hiddenSize = std::max<std::size_t>(size, 1);
        for (const char byte : bytes.substr(0, hiddenSize))
            append(firstStandIn + static_cast<unsigned char>(byte));
        bytes.remove_prefix(hiddenSize);
    }
    return text;
}

std::string hidden(const QString& text) {
    std::string bytes;
    QString plain;
    const auto flush = [&] {
        bytes += plain.toStdString();
        plain.clear();
    };
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar unit = text[at];
        const bool isPair =
            unit.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
        const char32_t character =
            isPair ? QChar::surrogateToUcs4(unit, text[at + 1]) : char32_t{unit.unicode()};
        if (isStandIn(character)) {
            flush();
            bytes += static_cast<char>(character - firstStandIn);
        } else {
            plain += unit;
            if (isPair)
                plain += text[at + 1];
        }
        at += isPair ? 1 : 0;
    }
    flush();
    return bytes;
}

} // namespace velmorquit::XmlBytes
