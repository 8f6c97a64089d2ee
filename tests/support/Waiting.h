#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

namespace velmorquit {

/// Lets the event loop run until `isSo` says yes; false when that doesn't happen in time. The time
/// is a limit for a machine that is very busy, not an expectation.
template <class Condition> bool waitUntil(Condition isSo, int milliseconds = 20000) {
    QElapsedTimer timer;
    timer.start();
    while (!isSo()) {
        if (timer.elapsed() > milliseconds)
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(2);
    }
    return true;
}

/// Lets the event loop run for a while.
inline void linger(int milliseconds) {
    waitUntil([] { return false; }, milliseconds);
}

} // namespace velmorquit
