#include "Linux/Files/LinuxFiles.h"

#include "Codecs/SmallFile.h"

#include <filesystem>

namespace velmorquit {

namespace fs = std::filesystem;

bool LinuxFiles::exists(const std::string& path) const {
    std::error_code error;
    return fs::exists(path, error);
}

std::optional<std::string> LinuxFiles::read(const std::string& path) const {
    return readSmallFile(path);
}

} // namespace velmorquit
