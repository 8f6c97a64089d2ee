#pragma once

#include "Linux/X11/X11Connection.h"
#include "Loop/MainLoop.h"

#include <set>

namespace velmorquit {

/// Asks windows whether their program still reacts (`_NET_WM_PING`).
class X11Pings {
public:
    /// How long a program may take to answer.
    static constexpr Duration patience = 3s;
    /// The shortest time between two pings of a window.
    static constexpr Duration interval = 10s;

    /// Both references must outlive it.
    X11Pings(MainLoop& loop, X11Connection& connection) : loop_(loop), connection_(connection) {}

    void ping(xcb_window_t window);
    [[nodiscard]] bool isDeaf(xcb_window_t window) const;

    /// To be called with every message that the root window gets.
    void hear(const xcb_client_message_event_t& message);
    /// Forgets all windows but these.
    void keep(const std::set<xcb_window_t>& windows);

private:
    struct Ping {
        Uptime sentAt;
        bool isAnswered = false;
        /// The previous ping was not answered either.
        bool wasDeaf = false;
    };

    void listen();
    void stopListening();

    MainLoop& loop_;
    X11Connection& connection_;
    std::map<xcb_window_t, Ping> pings_;
    std::uint32_t serial_ = 0;
    Handle listening_;
};

} // namespace velmorquit
