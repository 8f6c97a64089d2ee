#pragma once

#include <QDBusConnection>

namespace velmorquit {

/// Makes the connection go on reading however many messages wait to be handled. By default the
/// library stops at 63 MB, which others can send faster than they are handled. The main thread is
/// the one to notice when there is room again, but Qt accepts that only from its own thread: the
/// connection would stay deaf for as long as the program runs.
void keepReading(const QDBusConnection& bus);

} // namespace velmorquit
