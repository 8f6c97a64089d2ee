#include "Linux/X11/X11Idle.h"

#include <xcb/screensaver.h>

#include <chrono>

namespace velmorquit {

// A request of an extension that the server lacks would end the connection.
std::optional<Duration> X11Idle::sinceInput() {
    xcb_connection_t* connection = events_.connection().get();
    const auto* extension = xcb_get_extension_data(connection, &xcb_screensaver_id);
    if (!extension || !extension->present)
        return std::nullopt;
    const auto cookie = xcb_screensaver_query_info(connection, events_.connection().root());
    const auto reply = owned(xcb_screensaver_query_info_reply(connection, cookie, nullptr));
    events_.read();
    if (!reply)
        return std::nullopt;
    return std::chrono::milliseconds(reply->ms_since_user_input);
}

} // namespace velmorquit
