#pragma once

#include "Linux/Files/Descriptor.h"

#include <filesystem>
#include <string_view>
#include <system_error>

namespace velmorquit {

/// New content for a file, readable by the owner alone whatever the umask: it is written beside the
/// file and then moved into place in one step. Until then it can be discarded without a trace.
class AtomicFile {
public:
    /// Its temporary name.
    enum class Name {
        ofItsOwn,  ///< any number of processes may write the same file
        ofTheFile, ///< `<file>.new`: overwrites what a killed process has left
    };

    /// A link at `target` is replaced as well, not followed.
    AtomicFile(std::filesystem::path target, Name name);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    ~AtomicFile();

    /// Appends. Also fails if the file could not be created.
    [[nodiscard]] std::error_code write(std::string_view content);

    /// Moves it into place. Readers find it complete from then on, but unless it and its folder are
    /// synced it may be gone after a power cut.
    [[nodiscard]] std::error_code put();

    [[nodiscard]] const std::filesystem::path& target() const { return target_; }
    [[nodiscard]] const Descriptor& descriptor() const { return file_; }
    [[nodiscard]] Descriptor takeDescriptor() { return std::move(file_); }

    /// These wait for the disk.
    [[nodiscard]] static std::error_code sync(const Descriptor& file);
    static void syncFolderOf(const std::filesystem::path& file);

private:
    std::filesystem::path target_;
    std::filesystem::path name_; ///< empty when there is no such file (any more)
    Descriptor file_;
    std::error_code error_;
};

} // namespace velmorquit
