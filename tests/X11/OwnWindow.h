#pragma once

#include "Linux/X11/X11Connection.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <string>

namespace velmorquit {

/// A window of this program, on a connection of its own as the toolkit's are.
class OwnWindow {
public:
    OwnWindow() {
        const std::uint32_t white = connection.screen().white_pixel;
        xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, connection.root(), 500,
                          300, 200, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          connection.screen().root_visual, XCB_CW_BACK_PIXEL, &white);
        xcb_flush(connection.get());
    }

    /// Puts it on the screen and waits until it is there.
    void show() {
        xcb_map_window(connection.get(), window);
        xcb_flush(connection.get());
        EXPECT_TRUE(waitUntil([this] {
            const auto cookie = xcb_get_window_attributes(connection.get(), window);
            const auto reply =
                owned(xcb_get_window_attributes_reply(connection.get(), cookie, nullptr));
            return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
        }));
    }

    void take(const std::string& selection) {
        xcb_set_selection_owner(connection.get(), window, connection.atom(selection),
                                XCB_CURRENT_TIME);
        xcb_flush(connection.get());
    }

    void set(const std::string& property, const std::string& bytes) {
        xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window,
                            connection.atom(property), connection.atom(property), 8,
                            static_cast<std::uint32_t>(bytes.size()), bytes.data());
        xcb_flush(connection.get());
    }

    [[nodiscard]] bool isActive() {
        return connection.number(connection.root(), "_NET_ACTIVE_WINDOW") == window;
    }
    [[nodiscard]] bool hasFocus() {
        const auto cookie = xcb_get_input_focus(connection.get());
        const auto reply = owned(xcb_get_input_focus_reply(connection.get(), cookie, nullptr));
        return reply && reply->focus == window;
    }

    X11Connection connection = *X11Connection::open();
    xcb_window_t window = xcb_generate_id(connection.get());
};

} // namespace velmorquit
