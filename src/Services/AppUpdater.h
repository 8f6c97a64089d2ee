#pragma once

#include "Loop/Published.h"

namespace velmorquit {

/// Newer versions of the program.
///
/// Where the program is installed as a package, the desktop's own updates bring new versions and
/// there is nothing to look for: both fields stay false, and the controls that depend on them are
/// switched off or hidden.
class AppUpdater {
public:
    explicit AppUpdater(MainLoop& loop);

    Published<bool, AppUpdater> canCheckForUpdates;
    Published<bool, AppUpdater> updateAvailable;

    /// Looks for a newer version and tells the user what was found; nothing happens while
    /// `canCheckForUpdates` is false.
    void checkForUpdates();

protected:
    struct Findings {
        bool canCheck = false;
        bool isAvailable = false;
    };

    void publish(const Findings& findings);
};

} // namespace velmorquit
