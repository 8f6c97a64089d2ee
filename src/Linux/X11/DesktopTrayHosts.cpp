#include "Linux/X11/DesktopTrayHosts.h"

#include <QGuiApplication>

namespace velmorquit {

namespace {

/// With every change of hosts the icon is made anew.
constexpr Paced::Pace pace{.rest = std::chrono::milliseconds(300)};

} // namespace

DesktopTrayHosts::DesktopTrayHosts(MainLoop& loop, const QDBusConnection& bus, X11Events& events)
    : request_(events.connection().atom("_NET_SYSTEM_TRAY_OPCODE")),
      changes_(pace, [this] { observers_.tell(); }),
      notifier_(loop, bus, [this] { changes_.ask(); }),
      embedding_(events, "_NET_SYSTEM_TRAY_S", [this] { noteEmbedding(); }) {}

TrayHost DesktopTrayHosts::present() const {
    if (!notifier_.presentOne().isEmpty())
        return TrayHost::notifier;
    return embedding_.owner() != XCB_WINDOW_NONE ? TrayHost::embedding : TrayHost::none;
}

void DesktopTrayHosts::takeIn(std::uint64_t window) const {
    const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    const auto* toolkit =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!toolkit || embedding_.owner() == XCB_WINDOW_NONE)
        return;
    constexpr std::uint32_t dock = 0;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = embedding_.owner();
    message.type = request_;
    message.data.data32[0] = XCB_CURRENT_TIME;
    message.data.data32[1] = dock;
    message.data.data32[2] = static_cast<std::uint32_t>(window);
    xcb_send_event(toolkit->connection(), 0, embedding_.owner(), XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(toolkit->connection());
}

// Beside a notifier it makes no difference.
void DesktopTrayHosts::noteEmbedding() {
    if (notifier_.presentOne().isEmpty())
        changes_.ask();
}

} // namespace velmorquit
