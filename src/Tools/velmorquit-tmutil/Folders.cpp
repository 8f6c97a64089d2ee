#include "Folders.h"

#include "Codecs/PreferencesFile.h"
#include "Linux/Descriptor.h"

#include <cerrno>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmorquit::Folders {

namespace fs = std::filesystem;

namespace {

fs::path folderIn(const char* variable) {
    const char* value = std::getenv(variable);
    fs::path path = value ? value : "";
    return path.is_absolute() ? path : fs::path();
}

bool isOwn(const fs::path& folder) {
    struct stat its{};
    return ::stat(folder.c_str(), &its) == 0 && S_ISDIR(its.st_mode) && its.st_uid == ::getuid();
}

bool writeAll(int file, std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = ::write(file, content.data(), content.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// What was renamed is there after a power cut only when its folder has been written as well.
void syncFolder(const fs::path& folder) {
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened)
        ::fsync(opened.get());
}

} // namespace

fs::path configuration() { return defaultBackupDestinationsFile().parent_path(); }

fs::path runtime() {
    if (const fs::path folder = folderIn("XDG_RUNTIME_DIR"); isOwn(folder))
        return folder / "velmorquit";
    const fs::path usual = "/run/user/" + std::to_string(::getuid());
    return isOwn(usual) ? usual / "velmorquit" : state();
}

fs::path state() {
    if (const fs::path folder = folderIn("XDG_STATE_HOME"); !folder.empty())
        return folder / "velmorquit";
    return folderIn("HOME") / ".local/state/velmorquit";
}

bool makePrivate(const fs::path& folder) {
    std::error_code error;
    if (fs::is_directory(folder, error))
        return true;
    const fs::path parent = folder.parent_path();
    if (parent != folder && !makePrivate(parent))
        return false;
    return ::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST;
}

bool replace(const fs::path& file, std::string_view content, Durability durability) {
    std::error_code missing;
    const fs::path canonical = fs::canonical(file, missing);
    const fs::path target = missing ? file : canonical;
    std::string name = target.string() + ".XXXXXX";
    // A file that is made so can be read by its owner only.
    const Descriptor opened(::mkostemp(name.data(), O_CLOEXEC));
    if (!opened)
        return false;
    const bool isDurable = durability == Durability::onDisk;
    const bool isWritten =
        writeAll(opened.get(), content) && (!isDurable || ::fsync(opened.get()) == 0);
    if (!isWritten || ::rename(name.c_str(), target.c_str()) != 0) {
        ::unlink(name.c_str());
        return false;
    }
    if (isDurable)
        syncFolder(target.parent_path());
    return true;
}

} // namespace velmorquit::Folders
