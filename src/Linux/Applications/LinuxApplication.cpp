#include "Linux/Applications/LinuxApplication.h"

#include <csignal>
#include <utility>

namespace velmorquit {

LinuxApplication::LinuxApplication(std::unique_ptr<ProcessHandle> process, Identity identity,
                                   const ProcessOrigin& origin, Image picture,
                                   Surroundings surroundings)
    : process_(std::move(process)), identity_(std::move(identity)),
      icon_(
          std::make_shared<Icon>(Icon{identity_.iconName, identity_.iconFile, std::move(picture)})),
      launchDate_(origin.launchDate), isHidden_(identity_.isHidden), isService_(origin.isService),
      isBackground_(origin.isBackground), surroundings_(std::move(surroundings)) {}

void LinuxApplication::addIdentity(const Identity& identity) {
    if (identity.id)
        isHidden_ &= identity.isHidden;
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
    if (!windows || isTerminated())
        return false;
    if (policy_ == ActivationPolicy::accessory)
        return windows->askWithoutWindows(processId());
    formerDialogs_.clear();
    for (const Toplevel& dialog : windows->dialogs(processId()))
        formerDialogs_.insert(dialog.window);
    notAsked_ = windows->askToClose(processId());
    return !notAsked_;
}

StayReason LinuxApplication::stayReason() {
    const auto windows = surroundings_.windows.lock();
    if (!windows || isTerminated())
        return StayReason::unknown;
    if (windows->isDeaf(processId()))
        return StayReason::notResponding;
    // A modal one that was there before keeps it from closing just as well.
    for (const Toplevel& dialog : windows->dialogs(processId())) {
        if (dialog.isModal || !formerDialogs_.contains(dialog.window))
            return StayReason::asking;
    }
    if (policy_ == ActivationPolicy::accessory)
        return StayReason::windowless;
    return notAsked_.value_or(StayReason::unknown);
}

bool LinuxApplication::forceTerminate() {
    if (isTerminated())
        return true;
    if (process_->send(SIGTERM) == ProcessHandle::Signalled::refused) {
        surroundings_.log.write("Velmor Quit: il sistema non permette di forzare " +
                                identity_.name + " (processo " + std::to_string(processId()) + ")");
        return false;
    }
    // Asked again, the first deadline stays.
    if (!killing_.isSet())
        killing_ = surroundings_.loop.after(killDelay, [this] {
            if (!hasLeft_)
                process_->send(SIGKILL);
        });
    return true;
}

bool LinuxApplication::activate() {
    const auto windows = surroundings_.windows.lock();
    return windows && !isTerminated() && windows->bringToFront(processId());
}

} // namespace velmorquit
