#include "Platform/LoginWindow.h"
#include "Platform/SleepHold.h"
#include "Services/QuitController/QuitController.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

void QuitController::quitAll(PowerAction action) {
    if (isRunning())
        return;
    resetTask_.cancel();
    // An earlier run may be about to end the session, or have asked for it: it gives way to this
    // one.
    resetSequence(runNumber_);
    ++runNumber_;
    isActionDropped_ = false;
    isLate_ = false;
    desktop_.loginWindow.cancel();
    holdSleepForRun();
    refresh();
    targets_ = quittable();
    pendingAction = action;
    stubborn = {};
    resultNote = std::nullopt;
    if (targets_.empty()) {
        finish(AfterSteps::run);
        return;
    }

    phase = phases::Quitting{static_cast<int>(targets_.size())};
    beginningUntil_ = desktop_.loop.uptime() + beginning;
    hindered_.clear();
    unsettled_.clear();
    for (const OpenApp& target : targets_)
        unsettled_.insert(target.id);
    askTargets();
    pollTask_ = pollTargets(desktop_.loop.uptime() + gracePeriod);
}

Task QuitController::pollTargets(Uptime deadline) {
    const int number = ++pollNumber_;
    std::optional<Uptime> lookedAt;
    const Uptime lastAsking = desktop_.loop.uptime() + askingTime;
    for (;;) {
        co_await sleep(pollInterval);
        askTargets();
        std::vector<OpenApp> running = targetsStillRunning();
        if (running.empty()) {
            finish(AfterSteps::run);
            co_return;
        }
        noteWindowless(running);
        const Uptime now = desktop_.loop.uptime();
        if (now <= lastAsking)
            askHindered(running);
        if (now < deadline)
            continue;
        askWindowless(running);
        if (!lookedAt || now - *lookedAt >= reasonInterval) {
            stayReasons = reasonsOf(running);
            for (const auto& [id, reason] : stayReasons.get()) {
                if (reason == StayReason::busyTerminal)
                    hindered_.try_emplace(id);
            }
            lookedAt = now;
        }
        stubborn = std::move(running);
        if (!is<phases::Waiting>(phase)) {
            emit(events::StubbornApps{});
            if (number != pollNumber_)
                co_return;
            phase = phases::Waiting{};
            beginAsking();
        }
    }
}

// Nobody is there at night: the computer would fall asleep in the middle of the run.
void QuitController::holdSleepForRun() {
    if (!runActivity_.isSet())
        runActivity_ = desktop_.sleepHold.begin(localized("Velmor Quit sta chiudendo le app"));
}

void QuitController::beginAsking() {
    if (!unattended)
        runActivity_.reset();
    asking_ = desktop_.loop.after(longWait, [this] {
        isLate_ = true;
        runActivity_.reset();
    });
}

std::vector<OpenApp> QuitController::targetsStillRunning() const {
    std::vector<OpenApp> running;
    std::ranges::copy_if(targets_, std::back_inserter(running),
                         [](const OpenApp& target) { return !target.app->isTerminated(); });
    return running;
}

void QuitController::noteWindowless(const std::vector<OpenApp>& running) {
    for (const OpenApp& app : running) {
        if (app.app->activationPolicy() == ActivationPolicy::regular)
            windowlessSince_.erase(app.id);
        else
            windowlessSince_.try_emplace(app.id, desktop_.loop.uptime());
    }
}

// Some close their windows and go on in the tray or in the background. They still have to quit, and
// may understand being told so. They have the grace period to end what they are doing: most are
// gone by themselves.
void QuitController::askWindowless(const std::vector<OpenApp>& running) {
    for (const OpenApp& app : running) {
        const auto found = windowlessSince_.find(app.id);
        if (found == windowlessSince_.end() || !found->second || isExcluded(app))
            continue;
        const bool isLong = desktop_.loop.uptime() - *found->second >= windowlessPatience;
        if (isLong && app.app->terminate(AskedBy::run))
            found->second.reset();
    }
}

// What stood in the way may be gone between two commands only, and the user may be about to begin
// something there.
void QuitController::askHindered(const std::vector<OpenApp>& running) {
    const Uptime now = desktop_.loop.uptime();
    if (hindered_.empty() || now < lookForObstaclesAt_)
        return;
    lookForObstaclesAt_ = now + reasonInterval;
    for (const OpenApp& app : running) {
        const auto found = hindered_.find(app.id);
        if (found == hindered_.end())
            continue;
        auto& freeSince = found->second;
        const auto used = app.app->lastUsed();
        // What is in the way at the very beginning may be a prompt's helper.
        const bool isInUse = now > beginningUntil_ && used && now - *used < restBeforeAsking;
        const bool isFree = !isInUse && !isExcluded(app) && !app.app->obstacle() &&
                            app.app->activationPolicy() == ActivationPolicy::regular;
        if (!isFree)
            freeSince.reset();
        else if (!freeSince)
            freeSince = now;
        else if (app.app->terminate(AskedBy::run))
            hindered_.erase(found);
    }
}

std::optional<StayReason> QuitController::askAgain(const OpenApp& app) {
    if (isExcluded(app))
        return StayReason::cannotBeAsked;
    if (const auto obstacle = app.app->obstacle())
        return obstacle;
    if (!app.app->terminate(AskedBy::user))
        return StayReason::cannotBeAsked;
    hindered_.erase(app.id);
    return std::nullopt;
}

std::map<ProcessId, StayReason> QuitController::reasonsOf(const std::vector<OpenApp>& running) {
    std::map<ProcessId, StayReason> reasons;
    for (const OpenApp& app : running)
        reasons.emplace(app.id, app.app->stayReason());
    return reasons;
}

std::vector<std::string> QuitController::forceQuitStubborn() {
    std::vector<std::string> refused;
    const std::vector<OpenApp> forced = stubborn;
    for (const OpenApp& app : forced) {
        if (!isExcluded(app) && !app.app->forceTerminate())
            refused.push_back(app.name);
    }
    return refused;
}

void QuitController::leaveStubbornOpen() {
    if (!unfollowedResult_ && !is<phases::Quitting>(phase) && !is<phases::Waiting>(phase))
        return;
    pendingAction = PowerAction::none;
    if (unfollowedResult_) {
        postTask_.cancel();
        showResult(*std::exchange(unfollowedResult_, std::nullopt), std::nullopt);
        unattended = false;
        runActivity_.reset();
        return;
    }
    finish(AfterSteps::skip);
}

void QuitController::finish(AfterSteps steps) {
    ++pollNumber_;
    pollTask_.cancel();
    asking_.reset();
    for (const OpenApp& target : targets_)
        target.app->takeBack();
    renewTargets();
    const RunResult result = countClosed();
    // Before the refresh: that and all that follows may take long, and may be the last thing that
    // this session sees.
    rememberSession(closedTargets());
    stubborn = {};
    stayReasons = {};
    targets_.clear();
    windowlessSince_.clear();
    hindered_.clear();
    refresh();
    const PowerAction action = pendingAction;
    pendingAction = PowerAction::none;
    if (steps == AfterSteps::skip) {
        showResult(result, std::nullopt);
        unattended = false;
        runActivity_.reset();
        return;
    }
    holdSleepForRun();
    unfollowedResult_ = result;
    postTask_ = afterApps(result, action);
}

QuitController::RunResult QuitController::countClosed() const {
    RunResult result;
    for (const OpenApp& target : closedTargets()) {
        ++result.closed;
        result.freed += target.memory;
    }
    return result;
}

std::vector<OpenApp> QuitController::closedTargets() const {
    std::vector<OpenApp> closed;
    std::ranges::copy_if(targets_, std::back_inserter(closed),
                         [](const OpenApp& target) { return target.app->isTerminated(); });
    return closed;
}

void QuitController::showResult(RunResult result, std::optional<std::string> note) {
    phase = phases::Done{result.closed, result.freed, runNumber_};
    resultNote = std::move(note);
    resetTask_ = resetResult();
}

Task QuitController::resetResult() {
    co_await sleep(resultTime);
    phase = phases::Idle{};
    resultNote = std::nullopt;
}

} // namespace velmorquit
