#pragma once

#include <QDBusConnection>

namespace velmorquit {

/// Has the connection read on however many messages wait to be looked at. By itself the library
/// stops at 63 MB, which others can send faster than they are looked at, and when there is room
/// again it is the main thread that notices: Qt takes that from no thread but its own, and the
/// connection would stay deaf for as long as the program runs.
void keepReading(const QDBusConnection& bus);

} // namespace velmorquit
