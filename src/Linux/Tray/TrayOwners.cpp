#include "Linux/Tray/TrayOwners.h"

namespace velmorquit {

TrayOwners::TrayOwners(const QDBusConnection& bus, EmbeddingTray* embedding, ProcessId own)
    : items_(bus), embedding_(embedding), own_(own) {}

std::set<ProcessId> TrayOwners::processes() {
    std::set<ProcessId> processes = items_.processes();
    if (embedding_)
        processes.merge(embedding_->owners());
    processes.erase(own_);
    return processes;
}

bool TrayOwners::click(ProcessId process) {
    return items_.click(process) || (embedding_ && embedding_->click(process));
}

} // namespace velmorquit
