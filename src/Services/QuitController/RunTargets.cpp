#include "Services/QuitController/RunTargets.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace velmorquit {

RunTargets::RunTargets(MainLoop& loop, const RunningApplications& applications,
                       std::vector<OpenApp> list)
    : loop_(loop), applications_(applications), list_(std::move(list)),
      beginningUntil_(loop.uptime() + beginning) {
    for (const OpenApp& target : list_)
        unsettled_.insert(target.id);
}

std::vector<OpenApp> RunTargets::running() const {
    std::vector<OpenApp> running;
    std::ranges::copy_if(list_, std::back_inserter(running),
                         [](const OpenApp& target) { return !target.app->isTerminated(); });
    return running;
}

std::vector<OpenApp> RunTargets::closed() const {
    std::vector<OpenApp> closed;
    std::ranges::copy_if(list_, std::back_inserter(closed),
                         [](const OpenApp& target) { return target.app->isTerminated(); });
    return closed;
}

RunResult RunTargets::resultOf(const std::vector<OpenApp>& closed) {
    RunResult result;
    for (const OpenApp& target : closed) {
        ++result.closed;
        result.freed += target.memory;
    }
    return result;
}

/// The run began with the identities known then; asking, remembering and showing go by those known
/// now.
void RunTargets::renew() {
    for (OpenApp& target : list_)
        target.renew();
}

bool RunTargets::isSpared(const OpenApp& target) const {
    // By now it is known as something the user doesn't see, so it isn't on the user's list either.
    const bool isHidden = target.app->isIdentitySettled() &&
                          target.app->activationPolicy() == ActivationPolicy::accessory &&
                          target.app->obstacle();
    return unsettled_.contains(target.id) && !target.app->isTerminated() &&
           (applications_.isExcluded(target) || isHidden);
}

// An application that has only just appeared may turn out to be one that the user excludes, so it
// is asked once its identity is certain, which is long before the grace period ends. One that has
// been asked can no longer be spared.
bool RunTargets::ask() {
    renew();
    const auto spared =
        std::erase_if(list_, [this](const OpenApp& target) { return isSpared(target); });
    for (const OpenApp& target : list_) {
        const bool isRegular = target.app->activationPolicy() == ActivationPolicy::regular;
        // Not while it is between two windows; one that stays without is asked differently later.
        if (target.app->isIdentitySettled() && unsettled_.erase(target.id) > 0 &&
            !(isRegular && target.app->terminate(AskedBy::run)))
            hindered_.insert_or_assign(target.id, std::nullopt);
    }
    return spared > 0;
}

void RunTargets::noteWindowless(const std::vector<OpenApp>& running) {
    for (const OpenApp& app : running) {
        if (app.app->activationPolicy() == ActivationPolicy::regular)
            windowlessSince_.erase(app.id);
        else
            windowlessSince_.try_emplace(app.id, loop_.uptime());
    }
}

// Some close their windows and go on in the tray or in the background. They still have to quit, and
// may understand a request to do so. During the grace period they may finish what they are doing:
// most end by themselves.
void RunTargets::askWindowless(const std::vector<OpenApp>& running) {
    for (const OpenApp& app : running) {
        const auto found = windowlessSince_.find(app.id);
        if (found == windowlessSince_.end() || !found->second || applications_.isExcluded(app))
            continue;
        const bool isLong = loop_.uptime() - *found->second >= windowlessPatience;
        if (isLong && app.app->terminate(AskedBy::run))
            found->second.reset();
    }
}

// The obstacle may be gone only between two commands, and the user may be about to type the next
// one.
bool RunTargets::isFree(const OpenApp& app, Uptime now) const {
    const auto used = app.app->lastUsed();
    // An obstacle at the very beginning may be no more than a helper of the prompt.
    const bool isInUse = now > beginningUntil_ && used && now - *used < restBeforeAsking;
    return !isInUse && !applications_.isExcluded(app) && !app.app->obstacle() &&
           app.app->activationPolicy() == ActivationPolicy::regular;
}

void RunTargets::askHindered(const std::vector<OpenApp>& running) {
    const Uptime now = loop_.uptime();
    if (hindered_.empty() || now < lookForObstaclesAt_)
        return;
    lookForObstaclesAt_ = now + obstacleInterval;
    for (const OpenApp& app : running) {
        const auto found = hindered_.find(app.id);
        if (found == hindered_.end())
            continue;
        auto& freeSince = found->second;
        if (!isFree(app, now))
            freeSince.reset();
        else if (!freeSince)
            freeSince = now;
        else if (app.app->terminate(AskedBy::run))
            hindered_.erase(found);
    }
}

std::map<ProcessId, StayReason> RunTargets::reasonsOf(const std::vector<OpenApp>& running) {
    std::map<ProcessId, StayReason> reasons;
    for (const OpenApp& app : running)
        reasons.emplace(app.id, app.app->stayReason());
    return reasons;
}

void RunTargets::stopAsking() {
    for (const OpenApp& target : list_)
        target.app->takeBack();
    renew();
}

} // namespace velmorquit
