#include "Services/AppUpdater.h"

namespace velmorquit {

AppUpdater::AppUpdater(MainLoop& loop) : canCheckForUpdates(loop), updateAvailable(loop) {}

void AppUpdater::checkForUpdates() {}

void AppUpdater::publish(const Findings& findings) {
    canCheckForUpdates = findings.canCheck;
    updateAvailable = findings.isAvailable;
}

} // namespace velmorquit
