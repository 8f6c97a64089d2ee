#include "Codecs/XmlBytes.h"

#include "Texts/Utf8.h"

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
        const Utf8Character first = firstCharacter(bytes);
        if (first.isValid && isAllowed(first.code)) {
            append(first.code);
        } else {
            for (const char byte : bytes.substr(0, first.size))
                append(firstStandIn + static_cast<unsigned char>(byte));
        }
        bytes.remove_prefix(first.size);
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
