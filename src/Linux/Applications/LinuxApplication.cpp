#include "Linux/Applications/LinuxApplication.h"

#include "Texts/Shown.h"

#include <csignal>
#include <utility>

namespace velmorquit {

LinuxApplication::LinuxApplication(std::unique_ptr<ProcessHandle> process, Identity identity,
                                   const ProcessOrigin& origin, Image picture,
                                   Surroundings surroundings)
    : process_(std::move(process)), identity_(std::move(identity)),
      isSettled_(identity_.basis == Identity::Basis::entry),
      icon_(
          std::make_shared<Icon>(Icon{identity_.iconName, identity_.iconFile, std::move(picture)})),
      launchDate_(origin.launchDate), isHidden_(identity_.isHidden), isService_(origin.isService),
      isBackground_(origin.isBackground), surroundings_(std::move(surroundings)) {
    noteKey(identity_.windowKey);
}

void LinuxApplication::addIdentity(const Identity& identity) {
    if (identity.basis == Identity::Basis::entry)
        isHidden_ &= identity.isHidden;
    noteKey(identity.key());
}

void LinuxApplication::noteKey(const std::string& key) {
    if (!key.empty() && key != identity_.key())
        otherKeys_.insert(key);
}

bool LinuxApplication::improve(const Identity& identity) {
    const bool isMakeshift = identity.basis == Identity::Basis::makeshift;
    const bool isOther = identity.name != identity_.name || identity.key() != identity_.key();
    if (identity.basis < identity_.basis || (identity.basis == identity_.basis && !isMakeshift) ||
        !isOther)
        return false;
    const Identity former = std::exchange(identity_, identity);
    otherKeys_.erase(identity_.key());
    noteKey(former.key());
    noteKey(identity.windowKey);
    if (identity.basis != Identity::Basis::entry)
        return true;
    // Its first desktop entry counts as if it had been known from the start.
    isHidden_ = identity.isHidden;
    icon_ = std::make_shared<Icon>(Icon{identity.iconName, identity.iconFile, icon_->image});
    isSettled_ = true;
    return true;
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

void LinuxApplication::noteKeyboard(bool hasKeyboard) {
    if (hasKeyboard || hasKeyboard_)
        hadKeyboardAt_ = surroundings_.loop.uptime();
    if (hasKeyboard && !hasKeyboard_)
        keyboardSince_ = surroundings_.loop.uptime();
    if (!hasKeyboard && hasKeyboard_)
        workedWith_ = workedWith();
    hasKeyboard_ = hasKeyboard;
}

// It may have the keyboard only because the window manager passed it on, with nobody there.
std::optional<Uptime> LinuxApplication::workedWith() const {
    const auto windows = surroundings_.windows.lock();
    if (!hasKeyboard_ || !windows)
        return workedWith_;
    const Duration held = surroundings_.loop.uptime() - keyboardSince_;
    const Duration idle = windows->sinceInput().value_or(Duration::zero());
    return idle <= held ? std::optional(keyboardSince_ + (held - idle)) : workedWith_;
}

void LinuxApplication::takeBack() {
    const auto windows = surroundings_.windows.lock();
    if (windows && windows->takeBack(processId()))
        request_ = {};
}

std::optional<Uptime> LinuxApplication::lastUsed() const {
    return hasKeyboard_ ? std::optional(surroundings_.loop.uptime()) : hadKeyboardAt_;
}

std::optional<StayReason> LinuxApplication::obstacle() {
    const auto windows = surroundings_.windows.lock();
    if (!windows || isTerminated())
        return StayReason::cannotBeAsked;
    const std::vector<Toplevel> open = windows->windowsOf(processId());
    if (policy_ == ActivationPolicy::accessory)
        return open.empty() ? std::nullopt : std::optional(StayReason::cannotBeAsked);
    const bool isAsking = request_.showsQuestion(open, surroundings_.loop.uptime());
    return isAsking ? StayReason::asking : windows->obstacle(processId());
}

bool LinuxApplication::terminate(AskedBy who) {
    const auto windows = surroundings_.windows.lock();
    if (!windows || isTerminated())
        return false;
    if (policy_ == ActivationPolicy::accessory)
        return windows->askWithoutWindows(processId());
    const std::vector<Toplevel> open = windows->windowsOf(processId());
    const Uptime now = surroundings_.loop.uptime();
    if (who == AskedBy::run && request_.isOpen(open, workedWith(), now))
        return true;
    if (obstacle())
        return false;
    request_.begin(open, now);
    windows->askToClose(processId());
    return true;
}

StayReason LinuxApplication::stayReason() {
    const auto windows = surroundings_.windows.lock();
    if (!windows || isTerminated())
        return StayReason::unknown;
    if (windows->isDeaf(processId()))
        return StayReason::notResponding;
    const std::vector<Toplevel> open = windows->windowsOf(processId());
    const Uptime now = surroundings_.loop.uptime();
    request_.look(open, workedWith(), now);
    if (request_.showsQuestion(open, now))
        return StayReason::asking;
    if (policy_ == ActivationPolicy::accessory)
        return windows->isInTray(processId()) ? StayReason::inTray : StayReason::windowless;
    // A command may have started in a terminal since it was asked.
    const auto hindrance = obstacle();
    if (hindrance == StayReason::busyTerminal)
        request_ = {};
    return request_.hasBegun() ? StayReason::unknown : hindrance.value_or(StayReason::unknown);
}

bool LinuxApplication::forceTerminate() {
    if (isTerminated())
        return true;
    if (process_->send(SIGTERM) == ProcessHandle::Signalled::refused) {
        surroundings_.log.write("Velmor Quit: il sistema non permette di forzare " +
                                shownName(identity_.name) + " (processo " +
                                std::to_string(processId()) + ")");
        return false;
    }
    // A repeated request doesn't postpone the first deadline.
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
