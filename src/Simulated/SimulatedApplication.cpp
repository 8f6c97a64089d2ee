#include "Simulated/SimulatedApplication.h"

#include <utility>

namespace velmorquit {

SimulatedApplication::SimulatedApplication(ProcessId id, std::string name, std::uint64_t memory,
                                           Surroundings surroundings)
    : id_(id), label_(name), name_(std::move(name)), memory_(memory),
      surroundings_(std::move(surroundings)), launchDate_(surroundings_.loop.now()) {}

SimulatedApplication& SimulatedApplication::identified(std::string bundle) {
    bundle_ = std::move(bundle);
    return *this;
}

SimulatedApplication& SimulatedApplication::alsoKnownAs(std::string identity) {
    others_.push_back(std::move(identity));
    return *this;
}

SimulatedApplication& SimulatedApplication::withoutName() {
    name_.reset();
    return *this;
}

SimulatedApplication& SimulatedApplication::unsettled() {
    isSettled_ = false;
    return *this;
}

SimulatedApplication& SimulatedApplication::settled(std::string name, std::string bundle) {
    const std::optional<std::string> former = bundle_ ? bundle_ : name_;
    if (former && *former != bundle)
        others_.push_back(*former);
    name_ = std::move(name);
    bundle_ = std::move(bundle);
    isSettled_ = true;
    surroundings_.policyChanged();
    return *this;
}

SimulatedApplication& SimulatedApplication::withIcon(Icon icon) {
    icon_ = std::make_shared<Icon>(std::move(icon));
    return *this;
}

SimulatedApplication& SimulatedApplication::withoutWindows() {
    policy_ = ActivationPolicy::accessory;
    surroundings_.policyChanged();
    return *this;
}

SimulatedApplication& SimulatedApplication::withWindows() {
    policy_ = ActivationPolicy::regular;
    surroundings_.policyChanged();
    return *this;
}

SimulatedApplication& SimulatedApplication::quitsAfter(Duration time) {
    manners_ = Manners::quits;
    quitTime_ = time;
    return *this;
}

SimulatedApplication& SimulatedApplication::ignoresAsking() {
    manners_ = Manners::ignores;
    return *this;
}

SimulatedApplication& SimulatedApplication::cannotBeAsked() {
    manners_ = Manners::cannotBeAsked;
    return *this;
}

SimulatedApplication& SimulatedApplication::hindered(std::optional<StayReason> obstacle) {
    obstacle_ = obstacle;
    return *this;
}

SimulatedApplication& SimulatedApplication::usedAt(std::optional<Uptime> time) {
    lastUsed_ = time;
    return *this;
}

SimulatedApplication& SimulatedApplication::cannotBeForced() {
    canBeForced_ = false;
    return *this;
}

SimulatedApplication& SimulatedApplication::endsWhenForcedAfter(Duration time) {
    forceTime_ = time;
    return *this;
}

SimulatedApplication& SimulatedApplication::livesOnWithoutWindows() {
    manners_ = Manners::losesWindows;
    return *this;
}

SimulatedApplication& SimulatedApplication::needsToBeAskedTwice() {
    manners_ = Manners::endsWithoutWindows;
    return *this;
}

void SimulatedApplication::end() {
    if (std::exchange(isTerminated_, true))
        return;
    quitting_.reset();
    forcing_.reset();
    log("ended");
    surroundings_.ended();
}

std::optional<std::string> SimulatedApplication::bundlePath() const {
    if (!bundle_)
        return std::nullopt;
    return "/applications/" + *bundle_ + ".desktop";
}

std::optional<StayReason> SimulatedApplication::obstacle() {
    return manners_ == Manners::cannotBeAsked ? StayReason::cannotBeAsked : obstacle_;
}

bool SimulatedApplication::terminate(AskedBy) {
    if (obstacle_)
        return false;
    log("quit");
    if (isTerminated_ || manners_ == Manners::cannotBeAsked)
        return false;
    if (manners_ == Manners::quits && !quitting_.isSet())
        quitting_ = surroundings_.loop.after(quitTime_, [this] { end(); });
    if (manners_ == Manners::endsWithoutWindows && policy_ == ActivationPolicy::accessory)
        end();
    if (manners_ == Manners::losesWindows || manners_ == Manners::endsWithoutWindows) {
        policy_ = ActivationPolicy::accessory;
        surroundings_.policyChanged();
    }
    return true;
}

bool SimulatedApplication::forceTerminate() {
    log("force");
    if (isTerminated_)
        return true;
    if (!canBeForced_)
        return false;
    forcing_ = surroundings_.loop.after(forceTime_, [this] { end(); });
    return true;
}

bool SimulatedApplication::activate() {
    log("activate");
    return !isTerminated_ && policy_ == ActivationPolicy::regular;
}

void SimulatedApplication::log(std::string_view what) const {
    surroundings_.log(std::string(what) + ' ' + label_);
}

} // namespace velmorquit
