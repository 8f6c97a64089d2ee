#pragma once

#include "Linux/Tray/EmbeddingTray.h"
#include "Linux/Tray/NotifierItems.h"

#include <set>

namespace velmorquit {

/// Whose icons are in the tray, whichever way they got there.
class TrayOwners {
public:
    /// `bus` is the session bus, connected or not; `own` is this program's process. The tray, which
    /// may be null, outlives it.
    TrayOwners(const QDBusConnection& bus, EmbeddingTray* embedding, ProcessId own);

    /// The processes that have an icon, this one left out. Windows that a tray has taken in are
    /// asked of the display server, in some short questions; what is on the notifiers' list is read
    /// from memory.
    [[nodiscard]] std::set<ProcessId> processes();

    /// Clicks the icon of that process; false when it has none. Returns after some short questions.
    bool click(ProcessId process);

private:
    NotifierItems items_;
    EmbeddingTray* embedding_;
    ProcessId own_;
};

} // namespace velmorquit
