#pragma once

#include "Loop/Handle.h"
#include "Platform/ScreenRect.h"

#include <cstdint>
#include <functional>

namespace velmorquit {

/// What the program's own windows ask of the window system beyond what the toolkit offers.
///
/// For the main thread. Nothing here fails: what the window system can't do doesn't happen.
class WindowSystem {
public:
    virtual ~WindowSystem() = default;

    /// Whether windows are blended with what lies behind them. From memory.
    [[nodiscard]] virtual bool isCompositing() const = 0;

    /// Calls `changed` in a later turn whenever that changes.
    [[nodiscard]] virtual Handle observeCompositing(std::function<void()> changed) = 0;

    /// Brings that window of this program to the front and gives it the keyboard, whichever other
    /// window the user works with. The window is on the screen already. Returns at once.
    virtual void activate(std::uint64_t window) = 0;

    /// Keeps that window of this program out of task bars and lists of windows. It is on the screen
    /// already.
    virtual void keepOffLists(std::uint64_t window) = 0;

    /// Has what the pointer does in that window of this program outside `area` go to the windows
    /// below it. The area is in pixels, from the window's top left corner.
    virtual void limitInput(std::uint64_t window, const ScreenRect& area) = 0;

    /// Calls `pressed` whenever a pointer button goes down anywhere on the desktop (the wheel isn't
    /// one), for as long as the handle is held. The press goes where it would have gone: nothing is
    /// grabbed.
    [[nodiscard]] virtual Handle observePresses(std::function<void()> pressed) = 0;
};

} // namespace velmorquit
