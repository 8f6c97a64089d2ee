#include "Services/QuitController/QuitController.h"
#include "Services/Remote/RemoteControl.h"
#include "Services/SessionEnd/EndNotice.h"
#include "Services/SessionEnd/SessionEnd.h"
#include "Simulated/SimulatedDesktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>

namespace velmorquit {
namespace {

/// A user who does anything at any time, among applications that do anything too. Whatever happens
/// comes from the seed.
class RandomSession {
public:
    explicit RandomSession(unsigned seed) : random_(seed) {
        desktop_.endService.onCall = [this](LoginRequest request, EndForm form) {
            checkCall(request, form);
        };
        begin();
    }

    void step() {
        switch (pick(28)) {
        case 0:
        case 1:
            openOne();
            break;
        case 2:
            endOne();
            break;
        case 3:
        case 4:
            startRun();
            break;
        case 5:
            controller_->leaveStubbornOpen();
            break;
        case 6:
            controller_->forceQuitStubborn();
            break;
        case 7:
            toggleOne();
            break;
        case 8:
            pick(2) == 0 ? controller_->startLiveUpdates() : controller_->stopLiveUpdates();
            break;
        case 9:
            desktop_.loop.moveWallClock(std::chrono::seconds(pick(7200)) - 1h);
            break;
        case 10:
            if (pick(20) == 0)
                begin();
            break;
        case 11:
            pick(2) == 0 ? desktop_.volumes.mountStick("s" + std::to_string(pick(3)), pick(5))
                         : desktop_.volumes.unmount("/media/s" + std::to_string(pick(3)));
            break;
        case 12:
            controller_->chooseBackupFirst(pick(2) == 0);
            controller_->chooseEjectDrives(pick(2) == 0);
            changeBackups();
            break;
        case 13:
            controller_->stopBackup(pick(2) == 0 ? Stop::skip : Stop::cancel);
            break;
        case 14:
            controller_->resolveBackupFailure(pick(2) == 0 ? Choice::stop : Choice::goOn);
            break;
        case 15:
            controller_->ejectNow();
            break;
        case 16:
            if (pick(3) == 0)
                cancelAction();
            break;
        case 17:
        case 18:
            changeSchedule();
            break;
        case 19:
            if (pick(6) == 0)
                desktop_.loop.fallAsleep(std::chrono::seconds(pick(600)));
            break;
        case 20:
            pick(2) == 0 ? controller_->reopenLastSession() : controller_->forgetLastSession();
            EXPECT_TRUE(controller_->lastSession->empty());
            break;
        case 21:
        case 22:
            changeWindows();
            break;
        case 23:
            changeWork();
            break;
        case 24:
            changeAccount();
            break;
        case 25:
            answerNotice();
            break;
        default:
            break;
        }
        check();
        desktop_.advance(std::chrono::milliseconds(pick(4) == 0 ? pick(9000) : pick(300)));
        check();
    }

    /// Every run comes to an end when all that is open is gone.
    void finish() {
        events_.reset();
        controller_->cancelSchedule();
        desktop_.registry.account = SessionAccount{};
        desktop_.workspace.seen = Sight::all;
        desktop_.endService.ready = true;
        desktop_.processes.doing.clear();
        busySince_.clear();
        while (!desktop_.windows.added().empty())
            desktop_.windows.close(desktop_.windows.added().front().id);
        for (SimulatedApplication* app : apps_)
            app->end();
        // A backup and its record, three attempts at each drive, a question, the result.
        for (int turn = 0; turn < 10; ++turn) {
            controller_->resolveBackupFailure(Choice::goOn);
            desktop_.advance(15s);
            check();
        }
        EXPECT_TRUE(is<phases::Idle>(controller_->phase));
        EXPECT_FALSE(controller_->isRunning());
        EXPECT_FALSE(controller_->isEjecting());
        EXPECT_NE(end_->state->stage, EndState::Stage::waiting);
        EXPECT_NE(end_->state->stage, EndState::Stage::naming);
        EXPECT_FALSE(controller_->unattended.get());
        EXPECT_FALSE(controller_->autoContinueAt.get());
        EXPECT_EQ(controller_->runningAction.get(), PowerAction::none);
    }

private:
    using Stop = QuitController::BackupStop;
    using Choice = QuitController::FailureChoice;

    void begin() {
        watch_.reset();
        events_.reset();
        control_.reset();
        controller_.reset();
        endNotice_.reset();
        end_.reset();
        end_ = std::make_unique<SessionEnd>(
            SessionEnd::Surroundings{desktop_.loop, desktop_.systemLog, desktop_.workspace,
                                     desktop_.windows, desktop_.processes, desktop_.registry,
                                     desktop_.input, desktop_.sleepHold, desktop_.endService});
        endNotice_ = std::make_unique<EndNotice>(desktop_.loop, *end_, notice_);
        settings_ = std::make_unique<Settings>(desktop_.loop, desktop_.preferences);
        controller_ = std::make_unique<QuitController>(desktop_.ports(*end_), *settings_);
        control_ = std::make_unique<RemoteControl>(*controller_, actions_, desktop_.ports(*end_));
        events_ = controller_->hearEvents([this](const Event& event) { react(event); });
        // Of those without windows it knows nothing.
        for (const SimulatedApplication* app : apps_) {
            if (app->activationPolicy() != ActivationPolicy::regular)
                unknown_.insert(app->processId());
        }
        watch_ = controller_->phase.subscribe([this] { check(); });
        hasStubbornEvent_ = false;
        isBackupUnderWay_ = false;
        // A power action that was about to follow has gone with the controller.
        actionsDue_ = 0;
    }

    /// The tool may succeed, fail, hang for long, say nonsense, or not be there.
    void changeBackups() {
        auto& tool = desktop_.backupTool;
        if (pick(3) != 0)
            tool.configure();
        tool.launchError = pick(6) == 0 ? std::optional<std::string>("no tool") : std::nullopt;
        tool.duration = std::chrono::milliseconds(1 + pick(20000));
        tool.exitStatus = pick(4) == 0 ? 1 : 0;
        tool.errorOutput = pick(2) == 0 ? "why\n" : "";
        tool.recordDelay = std::chrono::seconds(pick(30));
        tool.recordedAt = pick(5) == 0 ? std::nullopt : std::optional<Duration>(0s);
        tool.progress = [odd = pick(5) == 0](Duration time) {
            return odd ? -1.0 + static_cast<double>(time.count() % 7)
                       : static_cast<double>(time.count()) / 2e10;
        };
        desktop_.endService.failure =
            pick(3) == 0 ? std::optional<std::string>("refused") : std::nullopt;
        desktop_.endService.cannotAsk =
            pick(2) == 0 ? std::optional<std::string>("nobody") : std::nullopt;
        desktop_.endService.ready = pick(4) != 0;
    }

    /// Windows that no list of applications shows.
    void changeWindows() {
        const auto& added = desktop_.windows.added();
        if (pick(3) == 0) {
            desktop_.windows.add({.name = "Hidden" + std::to_string(pick(3))}, pick(3) == 0,
                                 pick(4) != 0);
        } else if (!added.empty()) {
            desktop_.windows.close(
                added[static_cast<std::size_t>(pick(static_cast<int>(added.size())))].id);
        }
    }

    /// Somebody begins to work, or has done enough; some go to the tray meanwhile.
    void changeWork() {
        desktop_.processes.jobs.clear();
        if (pick(3) == 0)
            desktop_.processes.jobs.push_back(
                {10000 + pick(1000), "job" + std::to_string(pick(2))});
        if (apps_.empty())
            return;
        auto& app = *apps_[static_cast<std::size_t>(pick(static_cast<int>(apps_.size())))];
        const ProcessId id = app.processId();
        if (pick(2) == 0 || app.isTerminated()) {
            desktop_.processes.doing.erase(id);
            busySince_.erase(id);
            return;
        }
        busySince_.try_emplace(id, desktop_.loop.uptime());
        desktop_.processes.doing[id] = [this] {
            return ProcessWork{.processorTime = desktop_.loop.uptime().sinceStart * 3 / 10};
        };
        if (pick(3) == 0)
            desktop_.windows.inTray.insert(id);
        if (pick(4) != 0)
            app.withoutWindows();
    }

    void changeAccount() {
        auto& account = desktop_.registry.account;
        desktop_.registry.answerTime = pick(2) == 0 ? 0ms : std::chrono::milliseconds(pick(3000));
        account = pick(12) == 0 ? std::nullopt : std::optional(SessionAccount{});
        if (!account)
            return;
        if (pick(4) == 0)
            account->otherUsers.push_back("anna");
        if (pick(3) == 0)
            account->inhibitors.push_back(
                {pick(2) == 0 ? Inhibitor::Against::shutdown : Inhibitor::Against::sessionEnd,
                 "apt", std::to_string(pick(2)), 7, ""});
        account->hasSecondSession = pick(8) == 0;
        desktop_.workspace.seen = pick(4) == 0 ? Sight::noWindowList : Sight::all;
        desktop_.input.since = std::chrono::seconds(pick(240));
    }

    void answerNotice() {
        const EndState before = end_->state;
        switch (pick(4)) {
        case 0:
            if (notice_.press("cancel"))
                actionsDue_ = end_->state->stage == EndState::Stage::none ? 0 : actionsDue_;
            break;
        case 1:
            notice_.press("anyway");
            desktop_.advance(std::chrono::milliseconds(pick(3000)));
            break;
        default:
            if (notice_.press("confirm"))
                allowed_ = end_->state->list == before.list ? before.obstacles : allowed_;
        }
    }

    void cancelAction() {
        controller_->cancelPowerAction();
        actionsDue_ = 0;
    }

    void changeSchedule() {
        switch (pick(6)) {
        case 0:
            controller_->postponeSchedule(1);
            break;
        case 1:
            controller_->confirmScheduledQuit();
            break;
        case 2:
            controller_->cancelSchedule();
            break;
        case 3:
            controller_->chooseConfirmScheduled(pick(2) == 0);
            break;
        default:
            controller_->scheduleQuit(desktop_.loop.now() + std::chrono::seconds(pick(90) - 5),
                                      PowerAction::none);
        }
    }

    int pick(int below) { return std::uniform_int_distribution(0, below - 1)(random_); }

    std::vector<OpenApp> excludedApps() const {
        std::vector<OpenApp> found;
        for (const OpenApp& app : controller_->apps.get()) {
            const bool isNamesake =
                std::ranges::any_of(controller_->apps.get(), [&](const OpenApp& other) {
                    return other.name == app.name && !controller_->isExcluded(other);
                });
            if (controller_->isExcluded(app) && !isNamesake)
                found.push_back(app);
        }
        return found;
    }

    std::string linesAdded(const std::string& before) const {
        return desktop_.log().substr(before.size());
    }

    void openOne() {
        auto& app = desktop_.open("App" + std::to_string(pick(6)), 1 + pick(1000));
        const auto time = std::chrono::milliseconds(pick(12000));
        if (pick(3) == 0)
            app.identified("id" + std::to_string(pick(4)));
        if (pick(8) == 0)
            app.cannotBeForced();
        switch (pick(6)) {
        case 0:
            app.ignoresAsking();
            break;
        case 1:
            app.cannotBeAsked();
            break;
        case 2:
            app.livesOnWithoutWindows();
            break;
        default:
            app.quitsAfter(time);
        }
        apps_.push_back(&app);
    }

    void endOne() {
        if (!apps_.empty())
            apps_[static_cast<std::size_t>(pick(static_cast<int>(apps_.size())))]->end();
    }

    void toggleOne() {
        const auto apps = controller_->apps.get();
        if (!apps.empty())
            controller_->toggleExclusion(
                apps[static_cast<std::size_t>(pick(static_cast<int>(apps.size())))]);
    }

    void startRun() {
        const bool wasBusy = isBusy(controller_->phase);
        const std::string before = desktop_.log();
        controller_->refresh();
        const std::vector<OpenApp> spared = excludedApps();
        const bool hasAction = pick(2) == 0;
        controller_->quitAll(hasAction ? PowerAction::restart : PowerAction::none);
        for (const OpenApp& app : spared)
            EXPECT_EQ(linesAdded(before).find("quit " + app.name), std::string::npos);
        if (wasBusy) {
            EXPECT_EQ(desktop_.log(), before) << "a run in progress is left alone";
            return;
        }
        hasStubbornEvent_ = false;
        controller_->unattended = pick(3) == 0;
        actionsDue_ = hasAction ? 1 : 0;
        allowed_.clear();
    }

    void react(const Event& event) {
        if (std::holds_alternative<events::StubbornApps>(event)) {
            EXPECT_FALSE(hasStubbornEvent_) << "told once a run";
            EXPECT_TRUE(is<phases::Quitting>(controller_->phase));
            EXPECT_FALSE(controller_->stubborn->empty());
            hasStubbornEvent_ = true;
        } else if (std::holds_alternative<events::BackupStarted>(event)) {
            EXPECT_FALSE(std::exchange(isBackupUnderWay_, true));
            lastProgress_ = 0;
        } else if (const auto* progress = std::get_if<events::BackupProgress>(&event)) {
            EXPECT_TRUE(isBackupUnderWay_);
            EXPECT_GT(progress->fraction, lastProgress_);
            EXPECT_LT(progress->fraction, 1);
            lastProgress_ = progress->fraction;
        } else if (std::holds_alternative<events::BackupFinished>(event)) {
            isBackupUnderWay_ = false;
        } else if (std::holds_alternative<events::QuitDone>(event)) {
            EXPECT_TRUE(is<phases::Done>(controller_->phase));
        }
        if (pick(4) == 0)
            controller_->leaveStubbornOpen();
        if (pick(4) == 0)
            startRun();
        if (pick(4) == 0)
            controller_->forceQuitStubborn();
    }

    void checkSequence() {
        const Phase& phase = controller_->phase;
        if (!is<phases::BackingUp>(phase))
            isBackupUnderWay_ = false;
        // A scheduled run begins without anybody starting it.
        if (!is<phases::Quitting>(phase) && !is<phases::Waiting>(phase))
            hasStubbornEvent_ = false;
        if (controller_->autoContinueAt.get()) {
            EXPECT_TRUE(isBusy(phase) || is<phases::Done>(phase));
        }
        if (is<phases::Idle>(phase)) {
            EXPECT_FALSE(controller_->resultNote.get());
        }
        if (controller_->awaitingConfirmation) {
            EXPECT_TRUE(controller_->schedule.get());
        }
        // A hold for the schedule, and one for the run; none outlives its reason.
        const std::string held = desktop_.sleepHold.reasons();
        const bool isPending =
            controller_->schedule.get() && !controller_->awaitingConfirmation.get();
        if (!isPending) {
            EXPECT_EQ(held.find("programmata"), std::string::npos);
        }
        if (is<phases::Idle>(phase) && !controller_->isRunning()) {
            EXPECT_EQ(held.find("chiudendo"), std::string::npos);
        }
        // Whatever waits for long can be seen, and ended there.
        const EndState& end = end_->state;
        if (end.isComing() && end.obstacles == waitedFor_ && !end.obstacles.empty()) {
            const bool isLong = desktop_.loop.uptime() - waitedSince_ > 2s;
            EXPECT_TRUE(!isLong || (notice_.shown && !notice_.shown->buttons.empty()));
        } else {
            waitedFor_ = end.obstacles;
            waitedSince_ = desktop_.loop.uptime();
        }
        const bool isHeld = held.find("aspetta le app") != std::string::npos;
        const bool isComing = end_->state->isComing();
        EXPECT_TRUE(!isHeld || isComing);
        EXPECT_TRUE(!isComing || isHeld || held.find("chiudendo") != std::string::npos);
    }

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

    void check() {
        checkSequence();
        const Phase& phase = controller_->phase;
        if (!is<phases::Waiting>(phase) && !is<phases::Quitting>(phase)) {
            EXPECT_TRUE(controller_->stubborn->empty());
        }
        if (is<phases::Waiting>(phase)) {
            EXPECT_FALSE(controller_->stubborn->empty());
        }
        const auto& listed = controller_->apps.get();
        EXPECT_TRUE(std::ranges::is_sorted(listed, std::greater{}, &OpenApp::memory));
        for (const OpenApp& app : listed)
            EXPECT_FALSE(app.app->isTerminated());
        const auto stored = desktop_.preferences.texts("excludedApps");
        if (stored) {
            EXPECT_EQ(std::set(stored->begin(), stored->end()), controller_->excluded.get());
        }
    }

    std::mt19937 random_;
    SimulatedDesktop desktop_;
    ActionRunner actions_{desktop_.loop, desktop_.kernel, desktop_.formats};
    SimulatedNotice notice_{[](std::string_view) {}};
    std::unique_ptr<SessionEnd> end_;
    std::unique_ptr<EndNotice> endNotice_;
    std::unique_ptr<Settings> settings_;
    std::unique_ptr<QuitController> controller_;
    std::unique_ptr<RemoteControl> control_;
    std::vector<SimulatedApplication*> apps_;
    Handle events_;
    Handle watch_;
    bool hasStubbornEvent_ = false;
    bool isBackupUnderWay_ = false;
    double lastProgress_ = 0;
    /// Since when processes have been at work.
    std::map<ProcessId, Uptime> busySince_;
    /// Processes of which the program that runs now has seen no window.
    std::set<ProcessId> unknown_;
    /// What the end of the session waits for, and since when.
    std::vector<EndObstacle> waitedFor_;
    Uptime waitedSince_;
    /// What the user has given up by name.
    std::vector<EndObstacle> allowed_;
    int actionsDue_ = 0; ///< requests to end the session that the present run may still make
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
