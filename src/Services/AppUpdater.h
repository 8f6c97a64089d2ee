#pragma once

#include "Loop/Published.h"

namespace velmorquit {

/// Newer versions of the program.
///
/// Where it is installed as a package the desktop's own updates bring them, and there is nothing
/// that it could look for by itself: both fields stay false, and what is offered with them is
/// switched off or hidden.
class AppUpdater {
public:
    explicit AppUpdater(MainLoop& loop);

    Published<bool> canCheckForUpdates;
    Published<bool> updateAvailable;

    /// Looks for a newer version and tells the user what was found; nothing happens while
    /// `canCheckForUpdates` is false.
    void checkForUpdates();
};

} // namespace velmorquit
