#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace velmorquit {

/// All that is in this file; nothing where it can't be read.
inline std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

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

    /// The path of a new file in it with this content; folders on the way there are made.
    std::filesystem::path write(const std::filesystem::path& file,
                                const std::string& content) const {
        std::filesystem::create_directories((path_ / file).parent_path());
        std::ofstream(path_ / file, std::ios::binary) << content;
        return path_ / file;
    }
    /// The same with a file that can be run.
    std::filesystem::path writeProgram(const std::filesystem::path& file,
                                       const std::string& script = "#!/bin/sh\n") const {
        const std::filesystem::path program = write(file, script);
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        return program;
    }

private:
    std::filesystem::path path_;
};

} // namespace velmorquit
