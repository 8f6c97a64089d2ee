#pragma once

#include "Linux/Tray/EmbeddingTray.h"
#include "Linux/Tray/NotifierItems.h"

#include <set>

namespace velmorquit {

/// The owners of tray icons of both kinds.
class TrayOwners {
public:
    /// `bus` is the session bus, connected or not; `own` is this program's process. The tray, which
    /// may be null, must outlive it.
    TrayOwners(const QDBusConnection& bus, EmbeddingTray* embedding, ProcessId own);

    /// The processes that have an icon, without this one. The display server is asked about
    /// embedded windows, in some short questions; the icons on the notifiers' list are read from
    /// memory.
    [[nodiscard]] std::set<ProcessId> processes();

    /// Clicks the icon of that process; false when it has none. Asks some short questions first.
    bool click(ProcessId process);

private:
    NotifierItems items_;
    EmbeddingTray* embedding_;
    ProcessId own_;
};

} // namespace velmorquit
