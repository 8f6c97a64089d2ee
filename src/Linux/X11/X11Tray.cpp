#include "Linux/X11/X11Tray.h"

#include "Linux/X11/X11TrayIcons.h"
#include "Linux/X11/X11Windows.h"

#include <QGuiApplication>

#include <algorithm>

namespace velmorquit {

X11Tray::X11Tray(X11Events& events)
    : events_(events), request_(events.connection().atom("_NET_SYSTEM_TRAY_OPCODE")),
      tray_(events, "_NET_SYSTEM_TRAY_S", [this] { observers_.tell(); }) {}

void X11Tray::takeIn(std::uint64_t window) const {
    const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    const auto* toolkit =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!toolkit || !isPresent())
        return;
    constexpr std::uint32_t dock = 0;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = tray_.owner();
    message.type = request_;
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] = dock;
    message.data.data32[2] = static_cast<std::uint32_t>(window);
    xcb_send_event(toolkit->connection(), 0, tray_.owner(), XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(toolkit->connection());
}

std::set<ProcessId> X11Tray::owners() {
    X11Connection& connection = events_.connection();
    std::set<ProcessId> owners =
        X11Windows(connection).processes(X11TrayIcons(connection).windows());
    events_.read();
    return owners;
}

bool X11Tray::click(ProcessId process) {
    X11Connection& connection = events_.connection();
    X11TrayIcons icons(connection);
    X11Windows windows(connection);
    const std::set<xcb_window_t> all = icons.windows();
    const auto icon = std::ranges::find_if(
        all, [&](xcb_window_t window) { return windows.process(window) == process; });
    if (icon != all.end())
        icons.click(*icon);
    events_.read();
    return icon != all.end();
}

} // namespace velmorquit
