#include "Linux/X11/X11WindowSystem.h"

#include "Linux/X11/X11WindowManager.h"

#include <xcb/xfixes.h>

#include <utility>

namespace velmorquit {

X11WindowSystem::X11WindowSystem(MainLoop& loop, X11Events& events)
    : loop_(loop), events_(events),
      compositor_(events, "_NET_WM_CM_S", [this] { noteCompositor(); }), presses_(loop, events),
      wasCompositing_(isCompositing()) {}

// The selection also changes when one compositor replaces another.
void X11WindowSystem::noteCompositor() {
    if (std::exchange(wasCompositing_, isCompositing()) != isCompositing())
        observers_.tellLater(loop_);
}

void X11WindowSystem::activate(std::uint64_t window) {
    X11Connection& connection = events_.connection();
    const auto target = static_cast<xcb_window_t>(window);
    if (windowManagerKnows(connection, "_NET_ACTIVE_WINDOW")) {
        const auto shown = desktopOf(connection, connection.root());
        const auto own = desktopOf(connection, target);
        constexpr std::uint32_t onBehalfOfTheUser = 2;
        if (shown && own && *shown != *own)
            connection.sendMessage(connection.root(), target, "_NET_WM_DESKTOP",
                                   {*shown, onBehalfOfTheUser});
        askToActivate(connection, target);
    } else {
        constexpr std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(connection.get(), target, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        xcb_set_input_focus(connection.get(), XCB_INPUT_FOCUS_PARENT, target, XCB_CURRENT_TIME);
        xcb_flush(connection.get());
    }
    events_.read();
}

void X11WindowSystem::keepOffLists(std::uint64_t window) {
    X11Connection& connection = events_.connection();
    constexpr std::uint32_t add = 1;
    constexpr std::uint32_t fromAnApplication = 1;
    connection.sendMessage(connection.root(), static_cast<xcb_window_t>(window), "_NET_WM_STATE",
                           {add, connection.atom("_NET_WM_STATE_SKIP_TASKBAR"),
                            connection.atom("_NET_WM_STATE_SKIP_PAGER"), fromAnApplication});
    events_.read();
}

void X11WindowSystem::limitInput(std::uint64_t window, const ScreenRect& area) {
    xcb_connection_t* connection = events_.connection().get();
    const auto* fixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (!fixes || !fixes->present)
        return;
    const xcb_rectangle_t rectangle{
        static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
        static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height)};
    const xcb_xfixes_region_t region = xcb_generate_id(connection);
    xcb_xfixes_create_region(connection, region, 1, &rectangle);
    xcb_xfixes_set_window_shape_region(connection, static_cast<xcb_window_t>(window),
                                       XCB_SHAPE_SK_INPUT, 0, 0, region);
    xcb_xfixes_destroy_region(connection, region);
    xcb_flush(connection);
}

} // namespace velmorquit
