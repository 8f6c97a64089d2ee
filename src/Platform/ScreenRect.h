#pragma once

namespace velmorquit {

/// A rectangle, in the toolkit's units and from the top left of the whole desktop unless stated
/// otherwise.
struct ScreenRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const ScreenRect&, const ScreenRect&) = default;
};

} // namespace velmorquit
