#include "Linux/Files/PrivateFiles.h"

#include <cerrno>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmorquit::PrivateFiles {

namespace fs = std::filesystem;

namespace {

constexpr mode_t forTheOwner = 0600;
constexpr mode_t folderOfTheOwner = 0700;

std::error_code lastError() { return {errno, std::generic_category()}; }

/// Whether this user, the system, or whoever has the folder around it put it there: the rule by
/// which the kernel follows links in shared folders (proc(5), protected_symlinks).
bool isFamiliar(const fs::path& entry) {
    struct stat own{};
    struct stat around{};
    const fs::path folder = entry.has_parent_path() ? entry.parent_path() : fs::path(".");
    if (::lstat(entry.c_str(), &own) != 0 || own.st_uid == ::getuid() || own.st_uid == 0)
        return true;
    return ::stat(folder.c_str(), &around) == 0 && around.st_uid == own.st_uid;
}

/// What was renamed is there after a power cut only when its folder has been written as well.
void syncFolder(const fs::path& folder) {
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened)
        ::fsync(opened.get());
}

Descriptor madePrivate(int number) {
    Descriptor file(number);
    if (file)
        ::fchmod(file.get(), forTheOwner);
    return file;
}

} // namespace

std::error_code makeFolder(const fs::path& folder) {
    std::error_code ignored;
    if (folder.empty())
        return {};
    if (fs::is_directory(folder, ignored))
        return isFamiliar(folder) ? std::error_code()
                                  : std::make_error_code(std::errc::operation_not_permitted);
    const fs::path parent = folder.parent_path();
    if (parent != folder) {
        if (const auto error = makeFolder(parent))
            return error;
    }
    if (::mkdir(folder.c_str(), folderOfTheOwner) != 0) {
        if (errno == EEXIST && fs::is_directory(folder, ignored))
            return {};
        return lastError();
    }
    return ::chmod(folder.c_str(), folderOfTheOwner) == 0 ? std::error_code() : lastError();
}

fs::path targetOf(const fs::path& file) {
    constexpr int mostLinks = 40;
    fs::path target = file;
    for (int links = 0; links < mostLinks; ++links) {
        std::error_code isNoLink;
        const fs::path next = fs::read_symlink(target, isNoLink);
        if (isNoLink)
            return target;
        if (!isFamiliar(target))
            return file;
        target = target.parent_path() / next;
    }
    return target;
}

Descriptor create(const fs::path& file) {
    return madePrivate(::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, forTheOwner));
}

Descriptor openLock(const fs::path& file) {
    return madePrivate(
        ::open(file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, forTheOwner));
}

std::error_code writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = ::write(descriptor, content.data(), content.size());
        if (count < 0 && errno != EINTR)
            return lastError();
        if (count > 0)
            content.remove_prefix(static_cast<std::size_t>(count));
    }
    return {};
}

std::error_code replace(const fs::path& file, std::string_view content, Durability durability) {
    const fs::path target = targetOf(file);
    std::string name = target.string() + ".XXXXXX";
    const Descriptor opened = madePrivate(::mkostemp(name.data(), O_CLOEXEC));
    if (!opened)
        return lastError();
    const bool isDurable = durability == Durability::onDisk;
    std::error_code error = writeAll(opened.get(), content);
    if (!error && isDurable && ::fsync(opened.get()) != 0)
        error = lastError();
    if (!error && ::rename(name.c_str(), target.c_str()) != 0)
        error = lastError();
    if (error)
        ::unlink(name.c_str());
    else if (isDurable)
        syncFolder(target.parent_path());
    return error;
}

} // namespace velmorquit::PrivateFiles
