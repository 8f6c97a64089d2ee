#include "Services/AppUpdater.h"

namespace velmorquit {

AppUpdater::AppUpdater(MainLoop& loop) : canCheckForUpdates(loop), updateAvailable(loop) {}

void AppUpdater::checkForUpdates() {}

} // namespace velmorquit
