#include "Linux/X11/X11Selection.h"

#include <xcb/xfixes.h>

#include <utility>

namespace velmorquit {

X11Selection::X11Selection(X11Events& events, const std::string& name,
                           std::function<void()> changed)
    : Listener(events),
      atom_(events.connection().atom(name + std::to_string(events.connection().screenNumber()))) {
    watch();
    xcb_connection_t* connection = events.connection().get();
    const auto cookie = xcb_get_selection_owner(connection, atom_);
    if (const auto reply = owned(xcb_get_selection_owner_reply(connection, cookie, nullptr)))
        owner_ = reply->owner;
    events.read();
    changed_ = std::move(changed);
}

// The server ignores clients that haven't asked for the version first.
void X11Selection::watch() {
    xcb_connection_t* connection = events_.connection().get();
    const auto* extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (!extension || !extension->present)
        return;
    notification_ = extension->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    // Clients with a lower version may not shape windows later.
    xcb_discard_reply(connection, xcb_xfixes_query_version(connection, 2, 0).sequence);
    xcb_xfixes_select_selection_input(connection, events_.connection().root(), atom_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    xcb_flush(connection);
}

void X11Selection::hear(const xcb_generic_event_t& event) {
    if (notification_ == 0 || (event.response_type & 0x7f) != notification_)
        return;
    const auto& notification = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    if (notification.selection != atom_)
        return;
    const bool isTaken = notification.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER;
    owner_ = isTaken ? notification.owner : xcb_window_t{XCB_WINDOW_NONE};
    if (changed_)
        changed_();
}

} // namespace velmorquit
