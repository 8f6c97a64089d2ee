#include "Linux/Proc/ProcText.h"

#include <algorithm>
#include <charconv>
#include <csignal>

namespace velmorquit::ProcText {

std::optional<std::uint64_t> numberAt(std::string_view text, std::string_view field) {
    for (auto at = text.find(field); at != std::string_view::npos; at = text.find(field, at + 1)) {
        if (at != 0 && text[at - 1] != '\n')
            continue;
        std::string_view rest = text.substr(at + field.size());
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
        std::uint64_t number = 0;
        const auto result = std::from_chars(rest.data(), rest.data() + rest.size(), number);
        return result.ec == std::errc{} ? std::optional(number) : std::nullopt;
    }
    return std::nullopt;
}

std::string textAt(std::string_view text, std::string_view field) {
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = text.substr(begin, end - begin);
        const std::size_t colon = line.find(": ");
        if (line.starts_with(field) && colon != std::string_view::npos)
            return std::string(line.substr(colon + 2));
        begin = end + 1;
    }
    return {};
}

std::vector<std::string> splitAtNul(std::string_view text) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\0', begin), text.size());
        parts.emplace_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

bool ignoresHangup(std::string_view status) {
    constexpr std::string_view field = "\nSigIgn:\t";
    const auto at = status.find(field);
    if (at == std::string_view::npos)
        return false;
    // A number of sixteen digits, whose last bit is the first signal, SIGHUP.
    const char* const digits = status.data() + at + field.size();
    std::uint64_t ignored = 0;
    std::from_chars(digits, status.data() + status.size(), ignored, 16);
    return ((ignored >> (SIGHUP - 1)) & 1U) != 0;
}

} // namespace velmorquit::ProcText
