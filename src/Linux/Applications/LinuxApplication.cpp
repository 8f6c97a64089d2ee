#include "Linux/Applications/LinuxApplication.h"

#include <algorithm>
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

void LinuxApplication::noteWindow(std::uint64_t window) {
    if (asked_ && !asked_->windows.contains(window) &&
        surroundings_.loop.uptime() - asked_->at <= questionTime)
        questions_.insert(window);
}

void LinuxApplication::noteKeyboard(bool hasKeyboard) {
    if (hasKeyboard || hasKeyboard_)
        hadKeyboardAt_ = surroundings_.loop.uptime();
    hasKeyboard_ = hasKeyboard;
}

std::optional<Uptime> LinuxApplication::lastUsed() const {
    return hasKeyboard_ ? std::optional(surroundings_.loop.uptime()) : hadKeyboardAt_;
}

// One that keeps others from being used was there before, and keeps them from closing just as well.
bool LinuxApplication::showsQuestion(ApplicationWindows& windows) const {
    return std::ranges::any_of(windows.windowsOf(processId()), [this](const Toplevel& one) {
        return (one.isDialogOfAnother && one.isModal) || questions_.contains(one.window);
    });
}

// The question of some stands inside the window that was asked to close, where nobody sees it.
bool LinuxApplication::isStillAsked(ApplicationWindows& windows) const {
    if (!asked_)
        return false;
    const std::optional<Uptime> used = lastUsed();
    const bool wasUsedSince = used && *used - asked_->at > noticeTime;
    const bool isSameWindow =
        std::ranges::any_of(windows.windowsOf(processId()), [this](const Toplevel& one) {
            return asked_->windows.contains(one.window);
        });
    return showsQuestion(windows) || (isSameWindow && !wasUsedSince);
}

std::optional<StayReason> LinuxApplication::obstacle() {
    const auto windows = surroundings_.windows.lock();
    if (!windows || isTerminated())
        return StayReason::cannotBeAsked;
    if (policy_ == ActivationPolicy::accessory)
        return std::nullopt;
    return showsQuestion(*windows) ? StayReason::asking : windows->obstacle(processId());
}

bool LinuxApplication::terminate(AskedBy who) {
    const auto windows = surroundings_.windows.lock();
    if (!windows || isTerminated())
        return false;
    if (policy_ == ActivationPolicy::accessory)
        return windows->askWithoutWindows(processId());
    if (who == AskedBy::run && isStillAsked(*windows))
        return true;
    if (obstacle())
        return false;
    asked_ = Asked{.at = surroundings_.loop.uptime(), .windows = {}};
    questions_.clear();
    for (const Toplevel& one : windows->windowsOf(processId()))
        asked_->windows.insert(one.window);
    windows->askToClose(processId());
    return true;
}

StayReason LinuxApplication::stayReason() {
    const auto windows = surroundings_.windows.lock();
    if (!windows || isTerminated())
        return StayReason::unknown;
    if (windows->isDeaf(processId()))
        return StayReason::notResponding;
    for (const Toplevel& one : windows->windowsOf(processId())) {
        if (asked_ && !asked_->windows.contains(one.window))
            questions_.insert(one.window);
    }
    if (showsQuestion(*windows))
        return StayReason::asking;
    if (policy_ == ActivationPolicy::accessory)
        return windows->isInTray(processId()) ? StayReason::inTray : StayReason::windowless;
    return asked_ ? StayReason::unknown : obstacle().value_or(StayReason::unknown);
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
    return windows && !isTerminated() &&
           (windows->bringToFront(processId()) || windows->clickInTray(processId()));
}

} // namespace velmorquit
