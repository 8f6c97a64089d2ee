#pragma once

#include <QDBusConnection>

namespace velmorquit {

/// Has the connection stop reading while messages of some megabytes wait to be looked at, however
/// fast others send them: the bus keeps the rest, and in the end refuses it to whoever sends it.
/// Without it they would wait in this process, at several times their size.
void limitBacklog(const QDBusConnection& bus);

} // namespace velmorquit
