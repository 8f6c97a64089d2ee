#pragma once

#include "Loop/Handle.h"
#include "Platform/ScreenRect.h"

#include <functional>
#include <vector>

namespace velmorquit {

/// A spot of the desktop.
struct ScreenPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

struct Screen {
    ScreenRect frame;
    ScreenRect usable; ///< without the space reserved for panels

    friend bool operator==(const Screen&, const Screen&) = default;
};

/// Converts between the engine's coordinates (y grows upward) and the toolkit's (downward), both
/// from the upper edge of the whole desktop. A rectangle's position is its corner with the least x
/// and y.
[[nodiscard]] constexpr ScreenRect turned(const ScreenRect& area) {
    return {area.x, -area.y - area.height, area.width, area.height};
}
[[nodiscard]] constexpr ScreenPoint turned(ScreenPoint place) { return {place.x, -place.y}; }

/// The desktop's screens and its pointer, in the engine's coordinates: y grows upward. For the main
/// thread, from memory.
class Screens {
public:
    virtual ~Screens() = default;

    /// The main screen first. Empty without screens.
    [[nodiscard]] virtual std::vector<Screen> all() const = 0;

    /// The pointer's position, as far as the desktop tells.
    [[nodiscard]] virtual ScreenPoint pointer() const = 0;

    /// Calls `changed` in a later turn whenever a screen is added, removed or changed.
    [[nodiscard]] virtual Handle observe(std::function<void()> changed) const = 0;

    /// The screen at that place, or else the main one; an empty one if there are none.
    [[nodiscard]] Screen at(ScreenPoint place) const {
        const std::vector<Screen> screens = all();
        for (const Screen& screen : screens) {
            const ScreenRect& frame = screen.frame;
            const bool isOnIt = place.x >= frame.x && place.x < frame.x + frame.width &&
                                place.y > frame.y && place.y <= frame.y + frame.height;
            if (isOnIt)
                return screen;
        }
        return screens.empty() ? Screen() : screens.front();
    }
};

} // namespace velmorquit
