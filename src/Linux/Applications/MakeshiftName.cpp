#include "Linux/Applications/MakeshiftName.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <vector>

namespace velmorquit {

namespace {

constexpr std::size_t longestName = 24;
constexpr std::size_t longestExtension = 5;

bool isAscii(unsigned char letter) { return letter < 0x80; }
bool isUpper(unsigned char letter) { return isAscii(letter) && std::isupper(letter) != 0; }
bool isLetter(unsigned char letter) { return !isAscii(letter) || std::isalpha(letter) != 0; }
bool isDigit(unsigned char letter) { return isAscii(letter) && std::isdigit(letter) != 0; }

/// "org-example-Main" or "app-Main": the full name of a Java class with its dots replaced.
bool isQualified(std::string_view name) {
    const std::size_t dash = name.rfind('-');
    if (dash == std::string_view::npos)
        return false;
    return std::ranges::none_of(name.substr(0, name.find('-')), isUpper) &&
           std::ranges::any_of(name.substr(dash), isUpper);
}

/// The part of a name that all its spellings share.
std::string essence(std::string_view text) {
    std::string letters;
    for (const char letter : text) {
        if (isLetter(static_cast<unsigned char>(letter)) ||
            isDigit(static_cast<unsigned char>(letter)))
            letters += letter;
    }
    return lowered(letters);
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

std::vector<std::string_view> partsOf(std::string_view title) {
    static constexpr std::array<std::string_view, 3> dashes{" - ", " – ", " — "};
    std::vector<std::string_view> parts;
    for (std::size_t at = 0; at < title.size();) {
        const auto isDash = [&](std::string_view dash) {
            return title.substr(at).starts_with(dash);
        };
        const auto* const dash = std::ranges::find_if(dashes, isDash);
        if (dash == dashes.end()) {
            ++at;
            continue;
        }
        parts.push_back(trimmed(title.substr(0, at)));
        title.remove_prefix(at + dash->size());
        at = 0;
    }
    parts.push_back(trimmed(title));
    return parts;
}

bool isShort(std::string_view part) {
    const auto isBegin = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
    };
    return !part.empty() &&
           static_cast<std::size_t>(std::ranges::count_if(part, isBegin)) <= longestName;
}

/// A file, an address, or a name like "Untitled-1".
bool seemsDocument(std::string_view part) {
    if (!isLetter(static_cast<unsigned char>(part.front())) ||
        part.find_first_of("/\\@:[](){}*<>") != std::string_view::npos)
        return true;
    const std::size_t mark = part.find_last_of(".-");
    if (mark == std::string_view::npos || mark + 1 == part.size())
        return false;
    const std::string_view end = part.substr(mark + 1);
    if (part[mark] == '-')
        return std::ranges::all_of(end, isDigit);
    return end.size() <= longestExtension && std::ranges::any_of(end, isLetter) &&
           end.find(' ') == std::string_view::npos;
}

} // namespace

bool isOwnWord(const std::string& className) {
    const auto isPlain = [](unsigned char letter) {
        return isLetter(letter) || isDigit(letter) || letter == ' ' || letter == '_' ||
               letter == '-' || letter == '+';
    };
    return !className.empty() && isLetter(static_cast<unsigned char>(className.front())) &&
           std::ranges::all_of(className, isPlain) && !isQualified(className) &&
           !isCommonName(className);
}

// Some programs put their name first, most last.
std::string programInTitle(const std::string& title, const RunProgram& program,
                           const std::string& className) {
    const std::vector<std::string_view> parts = partsOf(title);
    const std::string named = essence(program.name);
    const std::string classed = essence(className);
    for (const std::string_view part : parts) {
        constexpr std::size_t shortest = 3;
        const std::string letters = essence(part);
        if (letters.size() >= shortest && isShort(part) && !seemsDocument(part) &&
            (named.find(letters) != std::string::npos ||
             classed.find(letters) != std::string::npos))
            return std::string(part);
    }
    const std::string_view last = parts.back();
    return parts.size() > 1 && isShort(last) && !seemsDocument(last) ? std::string(last) : "";
}

} // namespace velmorquit
