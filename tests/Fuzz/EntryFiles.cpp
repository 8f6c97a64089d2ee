#include "Fuzz/Fuzz.h"
#include "Linux/Applications/DesktopEntries.h"

#include <string>

#include <sys/mman.h>
#include <unistd.h>

using namespace velmorquit;

/// An entry that a program has installed, in memory.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int file = ::memfd_create("entry.desktop", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    const bool isWritten = ::ftruncate(file, 0) == 0 && ::pwrite(file, data, size, 0) >= 0;
    fuzz::require(isWritten, "there is memory for the entry");
    if (const auto identity = DesktopEntries::identityIn(path)) {
        fuzz::require(fuzz::isUtf8(identity->name) && fuzz::isUtf8(identity->iconName),
                      "names are texts");
        fuzz::require(!identity->key().empty(), "an entry is known by something");
        const Icon icon = DesktopEntries::iconOf(path);
        fuzz::require(icon.name == identity->iconName && icon.file == identity->iconFile,
                      "the icon is that of the entry");
    }
    return 0;
}
