#pragma once

#include "Platform/ScreenRect.h"

#include <optional>

namespace velmorquit {

/// The place of a popover.
struct PopoverPlace {
    int x = 0;
    int y = 0;
};

/// The greatest height of a popover in a work area.
[[nodiscard]] int mostPopoverHeight(const ScreenRect& workArea);

/// Below the anchor, or above it if that is in the lower half of the screen; in the upper right
/// corner without one. Always within the work area.
[[nodiscard]] PopoverPlace placePopover(const std::optional<ScreenRect>& anchor,
                                        const ScreenRect& workArea, int width, int height);

} // namespace velmorquit
