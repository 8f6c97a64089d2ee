#include "Fuzz/Fuzz.h"

#include <QUtf8StringView>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace velmorquit::fuzz {

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::cerr << "Broken: " << what << '\n';
    std::abort();
}

bool isUtf8(std::string_view text) {
    return QUtf8StringView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8();
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

std::uint8_t Input::byte() {
    if (rest_.empty())
        return 0;
    const auto first = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return first;
}

std::uint64_t Input::number() {
    std::uint64_t value = 0;
    for (int shift = 0; shift < 64; shift += 8)
        value |= std::uint64_t{byte()} << shift;
    return value;
}

std::string Input::text(std::size_t longest) {
    const std::size_t length = std::min({std::size_t{byte()}, longest, rest_.size()});
    std::string taken(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return taken;
}

std::string Input::line() {
    const std::size_t end = std::min(rest_.find('\n'), rest_.size());
    std::string taken(rest_.substr(0, end));
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return taken;
}

} // namespace velmorquit::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    velmorquit::fuzz::examine({reinterpret_cast<const char*>(data), size});
    return 0;
}
