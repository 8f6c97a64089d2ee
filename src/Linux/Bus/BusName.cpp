#include "Linux/Bus/BusName.h"

#include <utility>

namespace velmorquit {

// These name no sender: given a name, QtDBus would wait for the bus to tell its owner.
BusName::BusName(QDBusConnection bus, const QString& name, Changed changed)
    : bus_(std::move(bus)), changed_(std::move(changed)) {
    bus_.connect({}, "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged", {name},
                 {}, this, SLOT(hearOwner(QDBusMessage)));
    bus_.connect({}, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                 this, SLOT(hearDisconnected()));
}

void BusName::hearOwner(const QDBusMessage& signal) {
    if (signal.service() == "org.freedesktop.DBus")
        changed_(signal.arguments().value(2).toString());
}

void BusName::hearDisconnected() { changed_({}); }

} // namespace velmorquit
