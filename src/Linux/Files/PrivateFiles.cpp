#include "Linux/Files/PrivateFiles.h"

#include "Linux/Files/AtomicFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmorquit::PrivateFiles {

namespace fs = std::filesystem;

namespace {

constexpr mode_t forTheOwner = 0600;
constexpr mode_t folderOfTheOwner = 0700;

std::error_code lastError() { return {errno, std::generic_category()}; }

/// Whether it was created by this user, the system, or the owner of its folder: the kernel's rule
/// for following links in shared folders (proc(5), protected_symlinks).
bool isFamiliar(const fs::path& entry) {
    struct stat own{};
    struct stat around{};
    const fs::path folder = entry.has_parent_path() ? entry.parent_path() : fs::path(".");
    if (::lstat(entry.c_str(), &own) != 0 || own.st_uid == ::getuid() || own.st_uid == 0)
        return true;
    return ::stat(folder.c_str(), &around) == 0 && around.st_uid == own.st_uid;
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

Descriptor openLock(const fs::path& file) {
    Descriptor opened(::open(file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, forTheOwner));
    if (opened)
        ::fchmod(opened.get(), forTheOwner);
    return opened;
}

std::error_code replace(const fs::path& file, std::string_view content, Durability durability) {
    AtomicFile fresh(targetOf(file), AtomicFile::Name::ofItsOwn);
    std::error_code error = fresh.write(content);
    const bool isDurable = durability == Durability::onDisk;
    if (!error && isDurable)
        error = AtomicFile::sync(fresh.descriptor());
    if (!error)
        error = fresh.put();
    if (!error && isDurable)
        AtomicFile::syncFolderOf(fresh.target());
    return error;
}

} // namespace velmorquit::PrivateFiles
