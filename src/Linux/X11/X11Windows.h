#pragma once

#include "Linux/Windows/ToplevelSource.h"
#include "Linux/X11/X11Connection.h"

#include <xcb/res.h>

#include <optional>
#include <set>

namespace velmorquit {

/// What windows of an X server say of themselves. Requests are sent for many windows before the
/// first answer is waited for.
class X11Windows {
public:
    /// The connection outlives it.
    explicit X11Windows(X11Connection& connection) : connection_(connection) {}

    /// The requests about one window. Asked for last, the state that the window manager keeps tells
    /// whether the window was there for all of them.
    struct Inquiry {
        xcb_window_t window;
        xcb_get_property_cookie_t type, state, protocols, transientFor, wmClass, machine,
            applicationId, processId;
        std::optional<xcb_res_query_client_ids_cookie_t> client;
        xcb_get_property_cookie_t managed;
    };

    enum class Kind {
        toplevel, ///< an ordinary window, or a dialog
        shell,    ///< part of the desktop: a panel, the icons behind the windows
        other,    ///< neither
    };
    struct Facts {
        Kind kind = Kind::other;
        /// Known to the window manager by a state of its own, not by its list alone.
        bool isManaged = false;
        /// For `shell` with its process alone.
        Toplevel toplevel;
        xcb_window_t owner = XCB_WINDOW_NONE; ///< the window that a dialog belongs to
    };

    [[nodiscard]] Inquiry inquire(xcb_window_t window);

    /// Waits for the answers; none when there was no such window any more.
    [[nodiscard]] std::optional<Facts> read(const Inquiry& inquiry);

    /// The process at the other end of the window's connection, else 0.
    [[nodiscard]] ProcessId process(xcb_window_t window);

    /// The processes that own these windows, those that nobody knows left out.
    [[nodiscard]] std::set<ProcessId> processes(const std::set<xcb_window_t>& windows);

    /// The smallest picture of `_NET_WM_ICON` that is large enough for a list, else the largest;
    /// what is much larger is shrunk.
    [[nodiscard]] Image icon(xcb_window_t window);

private:
    using ClientCookie = std::optional<xcb_res_query_client_ids_cookie_t>;

    [[nodiscard]] Kind kindOf(const std::vector<std::uint32_t>& types);
    [[nodiscard]] ClientCookie requestProcess(xcb_window_t window);
    [[nodiscard]] ProcessId process(const ClientCookie& cookie);

    X11Connection& connection_;
    /// All names that this computer has had since the start: windows keep the one of their time.
    std::set<std::string> ownMachines_;
};

} // namespace velmorquit
