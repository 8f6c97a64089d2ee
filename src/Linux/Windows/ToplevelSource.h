#pragma once

#include "Loop/Handle.h"
#include "Platform/RunningApplication.h"
#include "Platform/Workspace.h"

#include <functional>
#include <set>
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

/// A window of a program.
struct Toplevel {
    std::uint64_t window = 0;
    /// 0 when the program runs on another computer, or nobody knows which one it is.
    ProcessId process = 0;
    /// The other computer; empty for this one. UTF-8.
    std::string machine;
    ToplevelIdentity identity;
    /// One that the user works with. The others are dialogs that no list of windows shows.
    bool isOrdinary = true;
    /// Belongs to another window or keeps it from being used: a dialog that asks something.
    bool isDialogOfAnother = false;
    /// Keeps other windows from being used for as long as it is open.
    bool isModal = false;
    /// Understands being asked to close.
    bool canBeAskedToClose = false;
    /// Understands being asked whether it still reacts.
    bool canBePinged = false;
};

/// A way by which the desktop tells of the windows that are open.
class ToplevelSource {
public:
    virtual ~ToplevelSource() = default;

    /// The ordinary windows and the dialogs in the order in which they appeared, as they were a
    /// tenth of a second ago at the most. One short question to the display server, in which all
    /// windows are asked about.
    [[nodiscard]] virtual const std::vector<Toplevel>& toplevels() = 0;

    /// Whether `toplevels` are all that there are. Asked of the desktop.
    [[nodiscard]] virtual Sight sight() = 0;

    /// What stands in the window's title bar, in UTF-8; empty when nothing does. Asked of the
    /// desktop.
    [[nodiscard]] virtual std::string title(std::uint64_t window) = 0;

    /// The processes that make up the desktop itself: panels, the icons behind the windows, the
    /// window manager, the compositor, the tray. As old as the last answer of `toplevels`.
    [[nodiscard]] virtual const std::set<ProcessId>& shellProcesses() const = 0;

    /// The window that the user worked with last; 0 when there was none.
    [[nodiscard]] virtual std::uint64_t activeWindow() const = 0;

    /// The window that has the keyboard now; 0 when none has, as on an empty virtual desktop.
    [[nodiscard]] virtual std::uint64_t focusedWindow() const = 0;

    /// Asks a window of `toplevels` to close as its own close button would. Returns at once.
    virtual void askToClose(std::uint64_t window) = 0;

    /// Brings a window to the front, from another virtual desktop too. Returns at once.
    virtual void bringToFront(std::uint64_t window) = 0;

    /// Asks a window whether it still reacts, unless that was done a moment ago. Returns at once;
    /// the answer shows in `isDeaf`.
    virtual void ping(std::uint64_t window) = 0;

    /// Whether the window has left a ping unanswered for some seconds.
    [[nodiscard]] virtual bool isDeaf(std::uint64_t window) const = 0;

    /// The picture with which the window stands for its program, in a size for lists; empty when it
    /// has none. A short question to the display server.
    [[nodiscard]] virtual Image icon(std::uint64_t window) = 0;

    /// Whether the window still belongs to that process: asked of the desktop, not read from
    /// memory.
    [[nodiscard]] virtual bool belongsTo(std::uint64_t window, ProcessId process) = 0;

    /// Calls `told` when windows came, went or changed, and when another one became active.
    [[nodiscard]] virtual Handle observe(std::function<void()> told) = 0;
};

} // namespace velmorquit
