#include "Fuzz/Fuzz.h"
#include "Linux/Volumes/BlockLayers.h"
#include "Linux/Volumes/MountLine.h"

/// A line of the kernel's list of mounts. Whoever mounts a file system chooses its path, and its
/// label may be a part of that.
void velmorquit::fuzz::examine(std::string_view bytes) {
    const auto line = MountLine::from(bytes);
    if (line)
        static_cast<void>(isPlaceOfSystem(line->path));
    for (const std::string& part : MountText::partsOfOverlay(line ? line->options : bytes))
        require(!part.empty(), "a part of an overlay has a name");
    static_cast<void>(MountText::deviceNumber(bytes));
    static_cast<void>(isPlaceOfSystem(bytes));
}
