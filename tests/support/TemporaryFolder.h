#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace velmorquit {

/// A new folder, which goes with this object and all that is in it.
class TemporaryFolder {
public:
    /// Its name begins with `prefix`.
    explicit TemporaryFolder(
        const std::string& prefix = "velmor-test.",
        const std::filesystem::path& around = std::filesystem::temp_directory_path()) {
        std::string name = (around / (prefix + "XXXXXX")).string();
        if (!::mkdtemp(name.data()))
            throw std::runtime_error("no folder " + name);
        path_ = std::filesystem::canonical(name);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace velmorquit
