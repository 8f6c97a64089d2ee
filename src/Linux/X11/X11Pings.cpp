#include "Linux/X11/X11Pings.h"

#include <algorithm>

namespace velmorquit {

void X11Pings::ping(xcb_window_t window) {
    const Uptime now = loop_.uptime();
    const auto former = pings_.find(window);
    if (former != pings_.end() && now - former->second.sentAt < interval)
        return;
    listen();
    pings_[window] = {.sentAt = now, .isAnswered = false, .wasDeaf = isDeaf(window)};
    connection_.sendMessage(window, window, "WM_PROTOCOLS",
                            {connection_.atom("_NET_WM_PING"), ++serial_, window});
}

bool X11Pings::isDeaf(xcb_window_t window) const {
    const auto found = pings_.find(window);
    if (found == pings_.end() || found->second.isAnswered)
        return false;
    return found->second.wasDeaf || loop_.uptime() - found->second.sentAt >= patience;
}

// The answer is the same message, sent to the root window. An answer to a ping by the window
// manager means as much.
void X11Pings::hear(const xcb_client_message_event_t& message) {
    if (message.type != connection_.atom("WM_PROTOCOLS") ||
        message.data.data32[0] != connection_.atom("_NET_WM_PING"))
        return;
    const auto found = pings_.find(message.data.data32[2]);
    if (found == pings_.end())
        return;
    found->second.isAnswered = true;
    if (std::ranges::all_of(pings_, [](const auto& ping) { return ping.second.isAnswered; }))
        stopListening();
}

void X11Pings::keep(const std::set<xcb_window_t>& windows) {
    std::erase_if(pings_, [&](const auto& ping) { return !windows.contains(ping.first); });
}

// Messages to the root window are only told together with every window that is created, moved or
// destroyed, which must not wake an idle program. Toolkits differ in the mask with which they send
// an answer; Qt's is for those who listen to the structure of the root window itself.
void X11Pings::listen() {
    connection_.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE |
                                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
                                 XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    listening_ = loop_.after(patience, [this] { stopListening(); });
}

void X11Pings::stopListening() {
    connection_.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    listening_.reset();
}

} // namespace velmorquit
