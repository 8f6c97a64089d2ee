#pragma once

#include "Simulation/RandomWorld.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace velmorquit {

/// The promises that hold whatever happens, and what the user has allowed.
class PromiseKeeper : public RandomWorld {
protected:
    explicit PromiseKeeper(unsigned seed) : RandomWorld(seed) {
        desktop_.endService.onCall = [this](LoginRequest request, EndForm form) {
            checkCall(request, form);
        };
    }

    void check() {
        const Phase& phase = controller_->phase;
        const bool isIdle = is<phases::Idle>(phase);
        EXPECT_TRUE(!controller_->autoContinueAt.get() || isBusy(phase) || is<phases::Done>(phase));
        EXPECT_TRUE(!isIdle || !controller_->resultNote.get());
        EXPECT_TRUE(!controller_->awaitingConfirmation.get() || controller_->schedule.get());
        EXPECT_TRUE(is<phases::Quitting>(phase) ||
                    controller_->stubborn->empty() != is<phases::Waiting>(phase));
        for (const OpenApp& app : controller_->apps.get())
            EXPECT_FALSE(app.app->isTerminated());
        // A hold for the schedule, one for the run and one for the end; none outlives its reason.
        const std::string held = desktop_.sleepHold.reasons();
        const auto holds = [&](const char* why) { return held.find(why) != std::string::npos; };
        EXPECT_TRUE(!holds("programmata") ||
                    (controller_->schedule.get() && !controller_->awaitingConfirmation.get()));
        EXPECT_TRUE(!holds("chiudendo") || !isIdle || controller_->isRunning());
        const EndState& end = end_->state;
        EXPECT_TRUE(!holds("aspetta le app") || end.isComing());
        EXPECT_TRUE(!end.isComing() || holds("aspetta le app") || holds("chiudendo"));
        // Whatever waits for long can be seen, and ended there.
        if (end.isComing() && end.obstacles == waitedFor_ && !end.obstacles.empty()) {
            const bool isLong = desktop_.loop.uptime() - waitedSince_ > 2s;
            EXPECT_TRUE(!isLong || (notice_.shown && !notice_.shown->buttons.empty()));
        } else {
            waitedFor_ = end.obstacles;
            waitedSince_ = desktop_.loop.uptime();
        }
    }

    /// After all has come to rest, and every wait to its end.
    void checkRest() const {
        EXPECT_TRUE(is<phases::Idle>(controller_->phase));
        EXPECT_FALSE(controller_->isRunning());
        EXPECT_FALSE(controller_->isEjecting());
        EXPECT_FALSE(end_->state->isComing());
        EXPECT_FALSE(controller_->unattended.get());
        EXPECT_FALSE(controller_->autoContinueAt.get());
        EXPECT_EQ(controller_->runningAction.get(), PowerAction::none);
    }

    /// What the user has given up by name.
    std::vector<EndObstacle> allowed_;
    int actionsDue_ = 0; ///< requests to end the session that the present run may still make

private:
    [[nodiscard]] bool isAllowed(const std::function<bool(const EndObstacle&)>& isMeant) const {
        return std::ranges::any_of(allowed_, isMeant);
    }

    /// Nothing may be lost that the user has not given up by name.
    void checkCall(LoginRequest request, EndForm form) {
        EXPECT_EQ(std::exchange(actionsDue_, 0), 1) << "nobody asked for it, or it is the second";
        EXPECT_EQ(request, LoginRequest::restart);
        EXPECT_EQ(form == EndForm::direct, desktop_.workspace.seen == Sight::all);
        EXPECT_FALSE(is<phases::Quitting>(controller_->phase) ||
                     is<phases::Waiting>(controller_->phase));
        for (const OpenWindow& window : desktop_.windows.open()) {
            EXPECT_TRUE(isAllowed([&](const EndObstacle& one) {
                return std::ranges::count(one.windows, window.id) > 0;
            })) << window.owner.name;
        }
        const auto& account = desktop_.registry.account;
        ASSERT_TRUE(account);
        EXPECT_TRUE(account->otherUsers.empty() && !account->hasSecondSession);
        for (const Inhibitor& inhibitor : account->inhibitors) {
            EXPECT_TRUE(isAllowed([&](const EndObstacle& one) {
                return one.kind == EndObstacle::Kind::inhibitor && one.name == inhibitor.who &&
                       one.detail == inhibitor.why;
            }));
        }
        for (const auto& [id, since] : busySince_) {
            const bool isLong = desktop_.loop.uptime() - since >= 3s;
            EXPECT_TRUE(!isLong || !desktop_.processes.doing.contains(id) || isGone(id) ||
                        unknown_.contains(id) ||
                        isAllowed([id](const EndObstacle& one) { return one.process == id; }))
                << id << " works";
        }
        allowed_.clear();
    }

    [[nodiscard]] bool isGone(ProcessId id) const {
        return std::ranges::any_of(apps_, [id](const SimulatedApplication* app) {
            return app->processId() == id && app->isTerminated();
        });
    }

    /// What the end of the session waits for, and since when.
    std::vector<EndObstacle> waitedFor_;
    Uptime waitedSince_;
};

} // namespace velmorquit
