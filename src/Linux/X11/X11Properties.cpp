#include "Linux/X11/X11Properties.h"

#include "Linux/Text/Utf8.h"

#include <algorithm>
#include <utility>

namespace velmorquit::X11Properties {

namespace {

/// Drops whole pixels until the shorter side is less than twice `side`.
Image shrunk(Image image, int side) {
    const int step = std::max(1, std::min(image.width, image.height) / side);
    if (step == 1)
        return image;
    Image small;
    small.width = image.width / step;
    small.height = image.height / step;
    for (int y = 0; y < small.height; ++y) {
        for (int x = 0; x < small.width; ++x)
            small.pixels.push_back(
                image.pixels[static_cast<std::size_t>(y * step * image.width + x * step)]);
    }
    return small;
}

} // namespace

std::string firstText(const std::string& bytes) { return bytes.substr(0, bytes.find('\0')); }

ToplevelIdentity identity(const std::string& wmClass, const std::string& applicationId) {
    const std::string instance = firstText(wmClass);
    return {.instance = utf8(instance),
            .className =
                utf8(firstText(wmClass.substr(std::min(instance.size() + 1, wmClass.size())))),
            .applicationId = utf8(firstText(applicationId))};
}

std::string title(const std::string& name, const std::string& oldName) {
    return utf8(name.empty() ? oldName : name);
}

// The property holds pictures one after the other, each preceded by its width and height. Only
// these figures and one picture are fetched: programs store up to a megabyte.
Image icon(const Numbers& numbers) {
    // Larger ones are skipped; above the second figure they can't be genuine.
    constexpr std::uint32_t largest = 1024;
    constexpr std::uint32_t largestBelieved = 8192;
    constexpr int enoughForLists = 48;
    constexpr int most = 16;
    constexpr std::uint32_t mostPixels = 1U << 27;
    Image best;
    std::uint32_t offsetOfBest = 0;
    std::uint32_t offset = 0;
    for (int count = 0; count < most; ++count) {
        const auto size = numbers(offset, 2);
        if (size.size() < 2 || size[0] == 0 || size[1] == 0 || size[0] > largestBelieved ||
            size[1] > largestBelieved)
            break;
        const std::uint32_t pixels = size[0] * size[1];
        if (pixels > mostPixels - offset)
            break;
        const std::uint32_t start = std::exchange(offset, offset + 2 + pixels);
        if (size[0] > largest || size[1] > largest)
            continue;
        const int width = static_cast<int>(size[0]);
        const int side = std::min(width, static_cast<int>(size[1]));
        const int sideOfBest = std::min(best.width, best.height);
        const bool isBestEnough = sideOfBest >= enoughForLists;
        const bool isEnough = side >= enoughForLists;
        if (isBestEnough ? isEnough && side < sideOfBest : side > sideOfBest) {
            best.width = width;
            best.height = static_cast<int>(size[1]);
            offsetOfBest = start + 2;
        }
    }
    const auto length = static_cast<std::uint32_t>(best.width * best.height);
    if (length > 0)
        best.pixels = numbers(offsetOfBest, length);
    return best.pixels.size() == length ? shrunk(std::move(best), enoughForLists) : Image();
}

} // namespace velmorquit::X11Properties
