#pragma once

#include "Linux/Windows/ToplevelSource.h"
#include "Linux/X11/X11Connection.h"

#include <xcb/res.h>

#include <optional>
#include <set>

namespace velmorquit {

/// The properties of an X server's windows. The requests for many windows are sent before waiting
/// for the first answer.
class X11Windows {
public:
    /// The connection must outlive it.
    explicit X11Windows(X11Connection& connection) : connection_(connection) {}

    /// The requests about one window. The last one, for the window manager's state of it, shows
    /// whether the window existed for all of them.
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
        /// Known to the window manager by its own state of the window, not only by its list.
        bool isManaged = false;
        /// For `shell` only its process is set.
        Toplevel toplevel;
        xcb_window_t owner = XCB_WINDOW_NONE; ///< the window that a dialog belongs to
    };

    [[nodiscard]] Inquiry inquire(xcb_window_t window);

    /// Waits for the answers; none if the window no longer existed.
    [[nodiscard]] std::optional<Facts> read(const Inquiry& inquiry);

    /// The process at the other end of the window's connection, or 0.
    [[nodiscard]] ProcessId process(xcb_window_t window);

    /// The owners of these windows, as far as they are known.
    [[nodiscard]] std::set<ProcessId> processes(const std::set<xcb_window_t>& windows);

    /// The smallest picture of `_NET_WM_ICON` that is large enough for a list, else the largest; a
    /// much larger one is shrunk.
    [[nodiscard]] Image icon(xcb_window_t window);

private:
    using ClientCookie = std::optional<xcb_res_query_client_ids_cookie_t>;

    [[nodiscard]] Kind kindOf(const std::vector<std::uint32_t>& types);
    [[nodiscard]] ClientCookie requestProcess(xcb_window_t window);
    [[nodiscard]] ProcessId process(const ClientCookie& cookie);

    X11Connection& connection_;
    /// All names of this computer since the start, since windows keep the one from their creation.
    std::set<std::string> ownMachines_;
};

} // namespace velmorquit
