#include "Linux/X11/DesktopTrayHosts.h"

namespace velmorquit {

DesktopTrayHosts::DesktopTrayHosts(MainLoop& loop, const QDBusConnection& bus, X11Events& events)
    : loop_(loop), notifier_(loop, bus, [this] { observers_.tellLater(loop_); }),
      embedding_(events, "_NET_SYSTEM_TRAY_S", [this] { noteEmbedding(); }) {}

TrayHost DesktopTrayHosts::present() const {
    if (!notifier_.presentOne().isEmpty())
        return TrayHost::notifier;
    return embedding_.owner() != XCB_WINDOW_NONE ? TrayHost::embedding : TrayHost::none;
}

// Beside a notifier it makes no difference.
void DesktopTrayHosts::noteEmbedding() {
    if (notifier_.presentOne().isEmpty())
        observers_.tellLater(loop_);
}

} // namespace velmorquit
