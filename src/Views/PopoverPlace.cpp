#include "Views/PopoverPlace.h"

#include <algorithm>

namespace velmorquit {
namespace {

constexpr int gap = 6;
constexpr int edge = 8;

int within(int value, int least, int most) { return std::max(least, std::min(value, most)); }

} // namespace

int mostPopoverHeight(const ScreenRect& workArea) { return workArea.height - 2 * edge; }

PopoverPlace placePopover(const std::optional<ScreenRect>& anchor, const ScreenRect& workArea,
                          int width, int height) {
    const int right = workArea.x + workArea.width - edge - width;
    const int bottom = workArea.y + workArea.height - edge - height;
    if (!anchor)
        return {std::max(workArea.x + edge, right), workArea.y + edge};
    const int middle = anchor->x + anchor->width / 2;
    const bool hangs = anchor->y + anchor->height / 2 < workArea.y + workArea.height / 2;
    const int y = hangs ? anchor->y + anchor->height + gap : anchor->y - gap - height;
    return {within(middle - width / 2, workArea.x + edge, right),
            within(y, workArea.y + edge, bottom)};
}

} // namespace velmorquit
