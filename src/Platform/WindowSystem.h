#pragma once

#include "Loop/Handle.h"
#include "Platform/ScreenRect.h"

#include <cstdint>
#include <functional>

namespace velmorquit {

/// Services of the window system for the program's own windows beyond those of the toolkit.
///
/// For the main thread. Nothing here fails: anything unsupported simply doesn't happen.
class WindowSystem {
public:
    virtual ~WindowSystem() = default;

    /// Whether windows are blended with what lies behind them. From memory.
    [[nodiscard]] virtual bool isCompositing() const = 0;

    /// Calls `changed` in a later turn whenever compositing starts or stops.
    [[nodiscard]] virtual Handle observeCompositing(std::function<void()> changed) = 0;

    /// Brings that window of this program to the front and gives it the keyboard, even while the
    /// user works in another one. The window must already be shown. Returns at once.
    virtual void activate(std::uint64_t window) = 0;

    /// Keeps that window of this program out of task bars and window lists. It must already be
    /// shown.
    virtual void keepOffLists(std::uint64_t window) = 0;

    /// Passes pointer input outside `area` of that window of this program on to the windows below.
    /// The area is in pixels, from the window's top left corner.
    virtual void limitInput(std::uint64_t window, const ScreenRect& area) = 0;

    /// Calls `pressed` whenever a pointer button (not the wheel) is pressed anywhere on the
    /// desktop, for as long as the handle is held. Nothing is grabbed: presses reach their windows
    /// as usual.
    [[nodiscard]] virtual Handle observePresses(std::function<void()> pressed) = 0;
};

} // namespace velmorquit
