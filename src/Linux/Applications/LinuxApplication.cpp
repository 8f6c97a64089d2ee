#include "Linux/Applications/LinuxApplication.h"

#include <csignal>
#include <utility>

namespace velmorquit {

LinuxApplication::LinuxApplication(std::unique_ptr<ProcessHandle> process, Identity identity,
                                   Surroundings surroundings)
    : process_(std::move(process)), identity_(std::move(identity)),
      surroundings_(std::move(surroundings)) {}

void LinuxApplication::addIdentity(const Identity& identity) {
    if (!identity.key().empty() && identity.key() != identity_.key())
        otherKeys_.insert(identity.key());
}

std::optional<std::string> LinuxApplication::localizedName() const {
    if (identity_.name.empty())
        return std::nullopt;
    return identity_.name;
}

std::optional<std::string> LinuxApplication::bundlePath() const {
    if (identity_.path.empty())
        return std::nullopt;
    return identity_.path;
}

bool LinuxApplication::terminate() {
    const auto windows = surroundings_.windows.lock();
    return windows && !isTerminated() && windows->askToClose(processId());
}

bool LinuxApplication::forceTerminate() {
    if (process_->send(SIGTERM) == ProcessHandle::Signalled::refused) {
        surroundings_.log.write("Velmor Quit: il sistema non permette di forzare " +
                                identity_.name + " (processo " + std::to_string(processId()) + ")");
        return false;
    }
    // Asked again, the first deadline stays.
    if (!killing_.isSet())
        killing_ = surroundings_.loop.after(killDelay, [this] { process_->send(SIGKILL); });
    return true;
}

bool LinuxApplication::activate() {
    const auto windows = surroundings_.windows.lock();
    return windows && !isTerminated() && windows->bringToFront(processId());
}

} // namespace velmorquit
