#pragma once

#include "Linux/X11/X11Events.h"
#include "Linux/X11/X11Presses.h"
#include "Linux/X11/X11Selection.h"
#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"
#include "Platform/WindowSystem.h"

namespace velmorquit {

/// The services of an X server and its window manager for the program's own windows.
class X11WindowSystem final : public WindowSystem {
public:
    /// Both references must outlive it.
    X11WindowSystem(MainLoop& loop, X11Events& events);

    [[nodiscard]] bool isCompositing() const override {
        return compositor_.owner() != XCB_WINDOW_NONE;
    }
    [[nodiscard]] Handle observeCompositing(std::function<void()> changed) override {
        return observers_.add(std::move(changed));
    }

    /// Moves a window on another virtual desktop to the current one. Asks the display server
    /// some short questions.
    void activate(std::uint64_t window) override;
    void keepOffLists(std::uint64_t window) override;
    void limitInput(std::uint64_t window, const ScreenRect& area) override;

    /// Calls `pressed` in a later turn, once for all presses of a turn. A touch counts as well.
    [[nodiscard]] Handle observePresses(std::function<void()> pressed) override {
        return presses_.observe(std::move(pressed));
    }

private:
    void noteCompositor();

    MainLoop& loop_;
    X11Events& events_;
    Subscribers observers_;
    X11Selection compositor_;
    X11Presses presses_;
    bool wasCompositing_;
};

} // namespace velmorquit
