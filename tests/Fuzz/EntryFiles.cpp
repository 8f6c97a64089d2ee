#include "Fuzz/Fuzz.h"
#include "Linux/Applications/DesktopEntries.h"

#include <string>

#include <sys/mman.h>
#include <unistd.h>

/// An entry that a program has installed, in memory.
void velmorquit::fuzz::examine(std::string_view bytes) {
    static const int file = ::memfd_create("entry.desktop", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    const bool isWritten =
        ::ftruncate(file, 0) == 0 && ::pwrite(file, bytes.data(), bytes.size(), 0) >= 0;
    require(isWritten, "there is memory for the entry");
    if (const auto identity = DesktopEntries::identityIn(path)) {
        require(isUtf8(identity->name) && isUtf8(identity->iconName), "names are texts");
        require(!identity->key().empty(), "an entry is known by something");
        const Icon icon = DesktopEntries::iconOf(path);
        require(icon.name == identity->iconName && icon.file == identity->iconFile,
                "the icon is that of the entry");
    }
}
