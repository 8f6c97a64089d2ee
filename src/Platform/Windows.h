#pragma once

#include "Loop/Handle.h"
#include "Platform/RunningApplication.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace velmorquit {

/// The program that owns a window, as far as the display knows.
struct WindowOwner {
    /// 0 when it runs on another computer or its process isn't known.
    ProcessId process = 0;
    /// The name that the user knows, in valid UTF-8; never empty.
    std::string name{};
    /// Identifies the application across starts; empty when nothing does.
    std::string application{};
    /// Without windows it doesn't concern the user: it came with the session, is hidden from menus,
    /// or is an input method.
    bool isBackground = false;
};

/// A window in which the user may have work.
struct OpenWindow {
    std::uint64_t id = 0;
    WindowOwner owner;
    /// It asks the user something, and must not be asked to close itself: some take that as an
    /// answer.
    bool isQuestion = false;
    /// Whether it understands a request to close.
    bool canBeAsked = false;
};

/// The windows of the session's display, no matter who owns them: parts of the desktop, programs
/// that no menu shows, other users and other computers. This program's own are left out.
class Windows {
public:
    virtual ~Windows() = default;

    /// The ordinary windows and questions, in the order in which they appeared.
    [[nodiscard]] virtual std::vector<OpenWindow> open() = 0;

    /// Asks a window of `open` to close as its own close button would. False when it was not asked
    /// because something running in it would be lost. Returns at once.
    virtual bool askToClose(std::uint64_t window) = 0;

    /// Asks a process that has lost its windows to quit, if it understands another way of asking.
    /// Returns at once.
    virtual void askWithoutWindows(ProcessId process) = 0;

    /// The processes that have an icon in the tray, as the display reports them; from memory.
    [[nodiscard]] virtual std::set<ProcessId> trayOwners() = 0;

    /// Calls `told` when windows came, went or changed.
    [[nodiscard]] virtual Handle observe(std::function<void()> told) = 0;
};

} // namespace velmorquit
