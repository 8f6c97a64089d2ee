#include "Codecs/SmallFile.h"

#include "Codecs/PropertyListLimits.h"

#include <array>
#include <fstream>

namespace velmorquit {

std::optional<std::string> readSmallFile(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error))
        return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    std::string content;
    std::array<char, 16384> part;
    // Not by its size: that may change meanwhile, and of files that the kernel makes up it is 0.
    while (content.size() <= PropertyList::largestList &&
           (stream.read(part.data(), part.size()) || stream.gcount() > 0))
        content.append(part.data(), static_cast<std::size_t>(stream.gcount()));
    if (!stream.eof() || stream.bad() || content.size() > PropertyList::largestList)
        return std::nullopt;
    return content;
}

} // namespace velmorquit
