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
    ScreenRect usable; ///< without what is kept for panels

    friend bool operator==(const Screen&, const Screen&) = default;
};

/// The other way of counting: the engine's y grows upward and the toolkit's downward, both from the
/// upper edge of the whole desktop. A rectangle's place is the corner at which it has the least x
/// and y.
[[nodiscard]] constexpr ScreenRect turned(const ScreenRect& area) {
    return {area.x, -area.y - area.height, area.width, area.height};
}
[[nodiscard]] constexpr ScreenPoint turned(ScreenPoint place) { return {place.x, -place.y}; }

/// The screens that the desktop consists of, and the pointer on it, as the engine counts: y grows
/// upward. For the main thread, from memory.
class Screens {
public:
    virtual ~Screens() = default;

    /// The desktop's main screen comes first. Empty where there is none.
    [[nodiscard]] virtual std::vector<Screen> all() const = 0;

    /// Where the pointer is, as far as the desktop tells.
    [[nodiscard]] virtual ScreenPoint pointer() const = 0;

    /// Calls `changed` in a later turn whenever a screen comes, goes, or becomes another.
    [[nodiscard]] virtual Handle observe(std::function<void()> changed) const = 0;

    /// The one that the place is on, else the main one; without any an empty one.
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
