#include "Folders.h"

#include "Codecs/PreferencesFile.h"

#include <cstdlib>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace velmorquit::tmutil::Folders {

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

} // namespace velmorquit::tmutil::Folders
