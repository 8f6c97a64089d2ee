#pragma once

#include "Linux/Files/Descriptor.h"

#include <filesystem>
#include <string_view>
#include <system_error>

namespace velmorquit {

/// A new content for a file, which only the owner can read whatever the umask: it is written beside
/// the file and then put in its place in one step. Without that nothing of it stays.
class AtomicFile {
public:
    /// Its name until then.
    enum class Name {
        ofItsOwn,  ///< any number of processes may write the same file
        ofTheFile, ///< `<file>.new`: what a killed process has left is written over
    };

    /// A link at `target` is replaced as well, and not followed.
    AtomicFile(std::filesystem::path target, Name name);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    ~AtomicFile();

    /// Appends; an error as well when the file could not be made.
    [[nodiscard]] std::error_code write(std::string_view content);

    /// Puts it in its place. What is there then is whole for who reads it, and may be gone after a
    /// power cut unless it and its folder are synced.
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
