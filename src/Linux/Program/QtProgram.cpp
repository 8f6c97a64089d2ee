#include "Linux/Program/QtProgram.h"

#include <QCoreApplication>

namespace velmorquit {

void QtProgram::terminate() {
    QMetaObject::invokeMethod(qApp, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
}

} // namespace velmorquit
