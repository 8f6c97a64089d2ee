#include "Linux/Bus/KeepReading.h"

#include <QLibrary>

#include <limits>

namespace velmorquit {

namespace {

constexpr long boundless = std::numeric_limits<long>::max();

} // namespace

// Qt has loaded the library already, but doesn't offer this function.
void keepReading(const QDBusConnection& bus) {
    static QLibrary library(QStringLiteral("dbus-1"), 3);
    static const auto limit = reinterpret_cast<void (*)(void*, long)>(
        library.resolve("dbus_connection_set_max_received_size"));
    if (void* connection = bus.internalPointer(); connection && limit)
        limit(connection, boundless);
}

} // namespace velmorquit
