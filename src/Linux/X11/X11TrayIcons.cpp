#include "Linux/X11/X11TrayIcons.h"

#include <algorithm>
#include <string>
#include <utility>

namespace velmorquit {

namespace {

/// The most windows whose children are asked for: for the tray, and for all others.
constexpr std::size_t mostWindows = 5000;

void limit(std::vector<xcb_window_t>& windows, std::size_t& left) {
    windows.resize(std::min(windows.size(), left));
    left -= windows.size();
}

} // namespace

// The tray may be in a frame, and that in another one; the other children of a frame are a
// program's own windows. Frames have dozens of windows for their edges, which must not use up the
// tray's share.
std::set<xcb_window_t> X11TrayIcons::windows() {
    const xcb_window_t owner = tray();
    if (owner == XCB_WINDOW_NONE)
        return {};
    const xcb_window_t traysProgram = programOf(owner);
    std::vector<xcb_window_t> icons;
    std::vector<xcb_window_t> ofTray;
    std::vector<xcb_window_t> ofOthers{connection_.root()};
    for (std::size_t left = mostWindows, leftOfTray = mostWindows;;) {
        limit(ofTray, leftOfTray);
        limit(ofOthers, left);
        std::vector<xcb_window_t> level = std::exchange(ofTray, {});
        level.insert(level.end(), ofOthers.begin(), ofOthers.end());
        ofOthers.clear();
        if (level.empty())
            return unmanaged(icons);
        for (const auto& [window, parent] : childrenOf(level)) {
            const xcb_window_t program = programOf(window);
            const xcb_window_t parentsProgram = programOf(parent);
            if (program == traysProgram)
                ofTray.push_back(window);
            else if (parentsProgram == traysProgram)
                icons.push_back(window);
            else if (program == parentsProgram || parent == connection_.root())
                ofOthers.push_back(window);
        }
    }
}

void X11TrayIcons::click(xcb_window_t icon) {
    const auto size = owned(xcb_get_geometry_reply(
        connection_.get(), xcb_get_geometry(connection_.get(), icon), nullptr));
    if (!size)
        return;
    const auto x = static_cast<std::int16_t>(size->width / 2);
    const auto y = static_cast<std::int16_t>(size->height / 2);
    const auto place = owned(xcb_translate_coordinates_reply(
        connection_.get(),
        xcb_translate_coordinates(connection_.get(), icon, connection_.root(), x, y), nullptr));
    xcb_button_press_event_t event{};
    event.detail = XCB_BUTTON_INDEX_1;
    event.root = connection_.root();
    event.event = icon;
    event.root_x = place ? place->dst_x : x;
    event.root_y = place ? place->dst_y : y;
    event.event_x = x;
    event.event_y = y;
    event.same_screen = 1;
    const auto send = [&](int type, std::uint32_t mask) {
        event.response_type = static_cast<std::uint8_t>(type);
        xcb_send_event(connection_.get(), 0, icon, mask, reinterpret_cast<const char*>(&event));
    };
    send(XCB_BUTTON_PRESS, XCB_EVENT_MASK_BUTTON_PRESS);
    event.state = XCB_KEY_BUT_MASK_BUTTON_1;
    send(XCB_BUTTON_RELEASE, XCB_EVENT_MASK_BUTTON_RELEASE);
    xcb_flush(connection_.get());
}

xcb_window_t X11TrayIcons::tray() {
    const xcb_atom_t selection =
        connection_.atom("_NET_SYSTEM_TRAY_S" + std::to_string(connection_.screenNumber()));
    const auto reply = owned(xcb_get_selection_owner_reply(
        connection_.get(), xcb_get_selection_owner(connection_.get(), selection), nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

/// The part of the id that all windows of one connection share.
xcb_window_t X11TrayIcons::programOf(xcb_window_t window) const {
    return window & ~xcb_get_setup(connection_.get())->resource_id_mask;
}

std::vector<X11TrayIcons::Found>
X11TrayIcons::childrenOf(const std::vector<xcb_window_t>& parents) {
    std::vector<xcb_query_tree_cookie_t> cookies;
    cookies.reserve(parents.size());
    for (const xcb_window_t parent : parents)
        cookies.push_back(xcb_query_tree(connection_.get(), parent));
    std::vector<Found> found;
    for (std::size_t index = 0; index < parents.size(); ++index) {
        const auto reply = owned(xcb_query_tree_reply(connection_.get(), cookies[index], nullptr));
        if (!reply)
            continue;
        const xcb_window_t* children = xcb_query_tree_children(reply.get());
        for (int child = 0; child < xcb_query_tree_children_length(reply.get()); ++child)
            found.push_back({children[child], parents[index]});
    }
    return found;
}

// If the window manager is also the tray, its frames contain the windows of all programs.
std::set<xcb_window_t> X11TrayIcons::unmanaged(const std::vector<xcb_window_t>& windows) {
    constexpr std::uint32_t withdrawn = 0;
    std::vector<xcb_get_property_cookie_t> cookies;
    cookies.reserve(windows.size());
    for (const xcb_window_t window : windows)
        cookies.push_back(connection_.request(window, "WM_STATE"));
    std::set<xcb_window_t> unmanaged;
    for (std::size_t index = 0; index < windows.size(); ++index) {
        const auto state = connection_.numbers(cookies[index]);
        if (state.empty() || state.front() == withdrawn)
            unmanaged.insert(windows[index]);
    }
    return unmanaged;
}

} // namespace velmorquit
