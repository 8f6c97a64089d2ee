#include "Simulation/PromiseKeeper.h"

#include <array>
#include <cstdlib>

namespace velmorquit {
namespace {

/// A user who does anything at any time.
class RandomSession : public PromiseKeeper {
public:
    explicit RandomSession(unsigned seed) : PromiseKeeper(seed) { begin(); }

    void step() {
        acts_[static_cast<std::size_t>(pick(28))]();
        check();
        desktop_.advance(std::chrono::milliseconds(oneIn(4) ? pick(9000) : pick(300)));
        check();
    }

    /// Every run comes to an end when all that is open is gone.
    void finish() {
        events_.reset();
        controller_->cancelSchedule();
        comeToRest();
        // A backup and its record, three attempts at each drive, a question, the result.
        for (int turn = 0; turn < 10; ++turn) {
            controller_->resolveBackupFailure(Choice::goOn);
            desktop_.advance(15s);
            check();
        }
        checkRest();
    }

private:
    using Stop = QuitController::BackupStop;
    using Choice = QuitController::FailureChoice;

    void begin() {
        watch_.reset();
        events_.reset();
        beginProgram();
        events_ = controller_->hearEvents([this](const Event&) { react(); });
        watch_ = controller_->phase.subscribe([this] { check(); });
        // A power action that was about to follow has gone with the controller.
        actionsDue_ = 0;
    }

    /// In the midst of telling.
    void react() {
        if (oneIn(4))
            controller_->leaveStubbornOpen();
        if (oneIn(4))
            startRun();
        if (oneIn(4))
            controller_->forceQuitStubborn();
    }

    void startRun() {
        const bool wasBusy = isBusy(controller_->phase);
        const std::string before = desktop_.log();
        controller_->refresh();
        const std::vector<OpenApp> spared = excludedApps();
        const bool hasAction = oneIn(2);
        controller_->quitAll(hasAction ? PowerAction::restart : PowerAction::none,
                             !wasBusy && oneIn(3) ? Attendance::unattended : Attendance::attended);
        for (const OpenApp& app : spared)
            EXPECT_EQ(desktop_.log().find("quit " + app.name, before.size()), std::string::npos);
        if (wasBusy) {
            EXPECT_EQ(desktop_.log(), before) << "a run in progress is left alone";
            return;
        }
        actionsDue_ = hasAction ? 1 : 0;
        allowed_.clear();
    }

    /// Those whose name no other has that may be asked.
    [[nodiscard]] std::vector<OpenApp> excludedApps() const {
        std::vector<OpenApp> found = controller_->apps;
        std::erase_if(found, [&](const OpenApp& app) {
            return std::ranges::any_of(controller_->apps.get(), [&](const OpenApp& other) {
                return other.name == app.name && !controller_->isExcluded(other);
            });
        });
        return found;
    }

    void toggleOne() {
        const auto apps = controller_->apps.get();
        if (!apps.empty())
            controller_->toggleExclusion(anyOf(apps));
    }

    void chooseWhatFollows() {
        controller_->chooseBackupFirst(oneIn(2));
        controller_->chooseEjectDrives(oneIn(2));
        changeBackups();
    }

    void cancelAction() {
        controller_->cancelPowerAction();
        actionsDue_ = 0;
    }

    void changeSchedule() {
        const int change = pick(6);
        change == 0   ? controller_->postponeSchedule(1)
        : change == 1 ? controller_->confirmScheduledQuit()
        : change == 2 ? controller_->cancelSchedule()
        : change == 3
            ? controller_->chooseConfirmScheduled(oneIn(2))
            : controller_->scheduleQuit(desktop_.loop.now() + std::chrono::seconds(pick(90) - 5),
                                        PowerAction::none);
    }

    void changeLastSession() {
        oneIn(2) ? controller_->reopenLastSession() : controller_->forgetLastSession();
        EXPECT_TRUE(controller_->lastSession->empty());
    }

    void answerNotice() {
        const EndState before = end_->state;
        const int answer = pick(4);
        if (answer == 0 && notice_.press("cancel")) {
            actionsDue_ = end_->state->stage == EndState::Stage::none ? 0 : actionsDue_;
        } else if (answer == 1) {
            notice_.press("anyway");
            desktop_.advance(std::chrono::milliseconds(pick(3000)));
        } else if (answer > 1 && notice_.press("confirm")) {
            allowed_ = end_->state->list == before.list ? before.obstacles : allowed_;
        }
    }

    const std::array<std::function<void()>, 28> acts_{
        [this] { openOne(); },
        [this] { openOne(); },
        [this] { endOne(); },
        [this] { startRun(); },
        [this] { startRun(); },
        [this] { controller_->leaveStubbornOpen(); },
        [this] { controller_->forceQuitStubborn(); },
        [this] { toggleOne(); },
        [this] { oneIn(2) ? controller_->startLiveUpdates() : controller_->stopLiveUpdates(); },
        [this] { desktop_.loop.moveWallClock(std::chrono::seconds(pick(7200)) - 1h); },
        [this] { oneIn(20) ? begin() : void(); },
        [this] { changeDrives(); },
        [this] { chooseWhatFollows(); },
        [this] { controller_->stopBackup(oneIn(2) ? Stop::skip : Stop::cancel); },
        [this] { controller_->resolveBackupFailure(oneIn(2) ? Choice::stop : Choice::goOn); },
        [this] { controller_->ejectNow(); },
        [this] { oneIn(3) ? cancelAction() : void(); },
        [this] { changeSchedule(); },
        [this] { changeSchedule(); },
        [this] { oneIn(6) ? desktop_.loop.fallAsleep(std::chrono::seconds(pick(600))) : void(); },
        [this] { changeLastSession(); },
        [this] { changeWindows(); },
        [this] { changeWindows(); },
        [this] { changeWork(); },
        [this] { changeAccount(); },
        [this] { answerNotice(); },
        [] {},
        [] {},
    };

    Handle events_;
    Handle watch_;
};

TEST(RandomSessionTest, KeepsEveryPromise) {
    const char* wanted = std::getenv("VELMOR_SEED");
    const unsigned first = wanted ? static_cast<unsigned>(std::atoi(wanted)) : 1;
    const unsigned last = wanted ? first : 300;
    for (unsigned seed = first; seed <= last && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("VELMOR_SEED=" + std::to_string(seed));
        RandomSession session(seed);
        for (int step = 0; step < 200 && !testing::Test::HasFailure(); ++step)
            session.step();
        session.finish();
    }
}

} // namespace
} // namespace velmorquit
