#include "Linux/DBus/BusBacklog.h"

#include <QLibrary>

namespace velmorquit {

namespace {

/// In bytes. One message may be larger, and is read all the same.
constexpr long mostWaiting = 4L << 20;

} // namespace

// Qt has loaded the library already, but has no words for this.
void limitBacklog(const QDBusConnection& bus) {
    static QLibrary library(QStringLiteral("dbus-1"), 3);
    static const auto limit = reinterpret_cast<void (*)(void*, long)>(
        library.resolve("dbus_connection_set_max_received_size"));
    if (void* connection = bus.internalPointer(); connection && limit)
        limit(connection, mostWaiting);
}

} // namespace velmorquit
