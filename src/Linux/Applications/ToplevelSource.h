#pragma once

#include "Platform/Handle.h"
#include "Platform/RunningApplication.h"

#include <functional>
#include <string>
#include <vector>

namespace velmorquit {

/// By which names a window says what program it belongs to. UTF-8; empty where it doesn't say.
struct ToplevelIdentity {
    std::string instance;      ///< first part of WM_CLASS, or what corresponds to it
    std::string className;     ///< second part of WM_CLASS, or what corresponds to it
    std::string applicationId; ///< the id with which the program registered

    friend auto operator<=>(const ToplevelIdentity&, const ToplevelIdentity&) = default;
};

/// An ordinary window: one that the user works with, of a program of this computer.
struct Toplevel {
    std::uint64_t window = 0;
    ProcessId process = 0;
    ToplevelIdentity identity;
    /// Belongs to another window or keeps it from being used: a dialog that asks something.
    bool isDialogOfAnother = false;
    /// Understands being asked to close.
    bool canBeAskedToClose = false;
};

/// A way by which the desktop tells of the windows that are open.
class ToplevelSource {
public:
    virtual ~ToplevelSource() = default;

    /// The ordinary windows in the order in which they appeared, as they were a tenth of a second
    /// ago at the most. One short question to the display server, in which all windows are asked
    /// about.
    [[nodiscard]] virtual const std::vector<Toplevel>& toplevels() = 0;

    /// The window that the user worked with last; 0 when there was none.
    [[nodiscard]] virtual std::uint64_t activeWindow() const = 0;

    /// Asks a window of `toplevels` to close as its own close button would. Returns at once.
    virtual void askToClose(std::uint64_t window) = 0;

    /// Brings a window to the front, from another virtual desktop too. Returns at once.
    virtual void bringToFront(std::uint64_t window) = 0;

    /// Whether the window still belongs to that process: asked of the desktop, not read from
    /// memory.
    [[nodiscard]] virtual bool belongsTo(std::uint64_t window, ProcessId process) = 0;

    /// Calls `told` when windows came, went or changed, and when another one became active.
    [[nodiscard]] virtual Handle observe(std::function<void()> told) = 0;
};

} // namespace velmorquit
