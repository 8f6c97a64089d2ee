#include "Linux/Volumes/MountLine.h"

#include <algorithm>
#include <charconv>
#include <sstream>
#include <sys/sysmacros.h>

namespace velmorquit {

std::optional<MountLine> MountLine::from(std::string_view text) {
    using namespace MountText;
    const std::vector<std::string> fields = split(text, ' ');
    const auto dash = std::ranges::find(fields, "-");
    // Six fields and then optional ones before the dash, three after it.
    if (std::distance(fields.begin(), dash) < 6 || std::distance(dash, fields.end()) < 3)
        return std::nullopt;
    return MountLine{.path = unescaped(fields[4]),
                     .type = dash[1],
                     .source = unescaped(dash[2]),
                     .options = std::distance(dash, fields.end()) > 3 ? dash[3] : "",
                     .device = deviceNumber(fields[2]),
                     .isWhole = fields[3] == "/"};
}

namespace MountText {

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    std::stringstream stream{std::string(text)};
    for (std::string part; std::getline(stream, part, separator);) {
        if (!part.empty())
            parts.push_back(part);
    }
    return parts;
}

std::string unescaped(std::string_view text) {
    const auto isOctal = [](char digit) { return digit >= '0' && digit <= '7'; };
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\' && at + 3 < text.size() &&
            std::all_of(&text[at + 1], &text[at + 3] + 1, isOctal)) {
            plain += static_cast<char>((text[at + 1] - '0') * 64 + (text[at + 2] - '0') * 8 +
                                       (text[at + 3] - '0'));
            at += 3;
        } else {
            plain += text[at];
        }
    }
    return plain;
}

dev_t deviceNumber(std::string_view text) {
    unsigned int major = 0;
    unsigned int minor = 0;
    const char* end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, major);
    if (first.ec != std::errc{} || first.ptr == end || *first.ptr != ':')
        return 0;
    const auto second = std::from_chars(first.ptr + 1, end, minor);
    return second.ec == std::errc{} ? makedev(major, minor) : 0;
}

std::vector<std::string> partsOfOverlay(std::string_view options) {
    std::vector<std::string> parts;
    for (const std::string& option : split(options, ',')) {
        const std::size_t equals = option.find('=');
        const std::string name = option.substr(0, equals);
        if (equals == std::string::npos || (!name.starts_with("lowerdir") && name != "upperdir"))
            continue;
        for (const std::string& part : split(std::string_view(option).substr(equals + 1), ':'))
            parts.push_back(unescaped(part));
    }
    return parts;
}

} // namespace MountText

} // namespace velmorquit
