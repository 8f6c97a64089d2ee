#include "Fuzz/Fuzz.h"
#include "Linux/Volumes/BlockLayers.h"
#include "Linux/Volumes/MountLine.h"

using namespace velmorquit;

/// A line of the kernel's list of mounts. Whoever mounts a file system chooses its path, and its
/// label may be a part of that.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto line = MountLine::from(text);
    if (line) {
        const std::size_t held =
            line->path.size() + line->type.size() + line->source.size() + line->options.size();
        fuzz::require(held < size, "a mount is a part of the line");
        static_cast<void>(isPlaceOfSystem(line->path));
    }
    std::size_t held = 0;
    for (const std::string& part : MountText::partsOfOverlay(line ? line->options : text)) {
        fuzz::require(!part.empty(), "a part of an overlay has a name");
        held += part.size();
    }
    fuzz::require(held <= size, "parts of an overlay are parts of its options");
    static_cast<void>(MountText::deviceNumber(text));
    static_cast<void>(isPlaceOfSystem(text));
    return 0;
}
