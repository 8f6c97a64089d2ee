#include "Linux/Files/LinuxFiles.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace velmorquit {

namespace fs = std::filesystem;

bool LinuxFiles::exists(const std::string& path) const {
    std::error_code error;
    return fs::exists(path, error);
}

std::optional<std::string> LinuxFiles::read(const std::string& path) const {
    constexpr std::uintmax_t largest = 16 << 20;
    std::error_code error;
    // Anything else than an ordinary file might have to be waited for.
    if (!fs::is_regular_file(path, error) || fs::file_size(path, error) > largest || error)
        return std::nullopt;
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        return std::nullopt;
    std::string content{std::istreambuf_iterator<char>(stream), {}};
    return stream.bad() ? std::nullopt : std::optional(std::move(content));
}

} // namespace velmorquit
