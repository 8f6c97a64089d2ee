#pragma once

#include "Loop/Handle.h"
#include "Platform/RunningApplication.h"
#include "Platform/Workspace.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace velmorquit {

/// The names by which a window identifies its program. UTF-8; empty where it has none.
struct ToplevelIdentity {
    std::string instance;      ///< first part of WM_CLASS, or its equivalent
    std::string className;     ///< second part of WM_CLASS, or its equivalent
    std::string applicationId; ///< the id under which the program has registered

    friend auto operator<=>(const ToplevelIdentity&, const ToplevelIdentity&) = default;
};

/// A window of a program.
struct Toplevel {
    std::uint64_t window = 0;
    /// 0 when the program runs on another computer, or its process isn't known.
    ProcessId process = 0;
    /// The other computer; empty for this one. UTF-8.
    std::string machine;
    ToplevelIdentity identity;
    /// The user works with it. All others are dialogs that window lists leave out.
    bool isOrdinary = true;
    /// Belongs to another window or blocks it: a dialog that asks something.
    bool isDialogOfAnother = false;
    /// Blocks other windows for as long as it is open.
    bool isModal = false;
    /// Understands a request to close.
    bool canBeAskedToClose = false;
    /// Understands the question whether it still reacts.
    bool canBePinged = false;
};

/// The desktop's knowledge of the open windows.
class ToplevelSource {
public:
    virtual ~ToplevelSource() = default;

    /// The ordinary windows and the dialogs in the order of their appearance, at most a tenth of a
    /// second old. Asks the display server one short question, which is about all windows at the
    /// same time.
    [[nodiscard]] virtual const std::vector<Toplevel>& toplevels() = 0;

    /// Whether `toplevels` is complete. Asks the desktop.
    [[nodiscard]] virtual Sight sight() = 0;

    /// The text of the window's title bar, in UTF-8; empty when it has none. This asks the
    /// desktop.
    [[nodiscard]] virtual std::string title(std::uint64_t window) = 0;

    /// The processes of the desktop itself: panels, the icons behind the windows, the window
    /// manager, the compositor, the tray. As of the last answer of `toplevels`.
    [[nodiscard]] virtual const std::set<ProcessId>& shellProcesses() const = 0;

    /// The window that the user worked with last; 0 if there was none.
    [[nodiscard]] virtual std::uint64_t activeWindow() const = 0;

    /// The window that has the keyboard now; 0 if none has, as on an empty virtual desktop.
    [[nodiscard]] virtual std::uint64_t focusedWindow() const = 0;

    /// Asks a window of `toplevels` to close as its own close button would. Returns at once.
    virtual void askToClose(std::uint64_t window) = 0;

    /// Brings a window to the front, from another virtual desktop too. Returns at once.
    virtual void bringToFront(std::uint64_t window) = 0;

    /// Asks a window whether it still reacts, unless it was asked a moment ago. Returns at once;
    /// the result shows in `isDeaf`.
    virtual void ping(std::uint64_t window) = 0;

    /// Whether the window has left a ping unanswered for some seconds.
    [[nodiscard]] virtual bool isDeaf(std::uint64_t window) const = 0;

    /// The window's icon for its program, in a size for lists; empty when it has none. A short
    /// question to the display server.
    [[nodiscard]] virtual Image icon(std::uint64_t window) = 0;

    /// Whether the window still belongs to that process; asks the desktop instead of reading from
    /// memory.
    [[nodiscard]] virtual bool belongsTo(std::uint64_t window, ProcessId process) = 0;

    /// Calls `told` when windows appeared, disappeared or changed, or another one became active.
    [[nodiscard]] virtual Handle observe(std::function<void()> told) = 0;
};

} // namespace velmorquit
