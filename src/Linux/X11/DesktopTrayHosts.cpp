#include "Linux/X11/DesktopTrayHosts.h"

#include <QGuiApplication>

namespace velmorquit {

DesktopTrayHosts::DesktopTrayHosts(MainLoop& loop, const QDBusConnection& bus, X11Events& events)
    : loop_(loop), request_(events.connection().atom("_NET_SYSTEM_TRAY_OPCODE")),
      notifier_(loop, bus, [this] { observers_.tellLater(loop_); }),
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
        observers_.tellLater(loop_);
}

} // namespace velmorquit
