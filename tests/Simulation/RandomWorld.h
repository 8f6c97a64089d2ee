#pragma once

#include "Services/QuitController/QuitController.h"
#include "Services/Remote/RemoteControl.h"
#include "Services/SessionEnd/EndNotice.h"
#include "Services/SessionEnd/SessionEnd.h"
#include "Simulated/SimulatedDesktop.h"

#include <memory>
#include <random>

namespace velmorquit {

/// The program among applications and a system that do anything at any time, by chance alone, which
/// is the seed's.
class RandomWorld {
public:
    explicit RandomWorld(unsigned seed) : random_(seed) {}

protected:
    int pick(int below) { return std::uniform_int_distribution(0, below - 1)(random_); }
    bool oneIn(int times) { return pick(times) == 0; }
    template <class List> auto& anyOf(List& list) {
        return list[static_cast<std::size_t>(pick(static_cast<int>(list.size())))];
    }

    /// The program begins anew: of applications without windows it knows nothing.
    void beginProgram() {
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
        for (const SimulatedApplication* app : apps_) {
            if (app->activationPolicy() != ActivationPolicy::regular)
                unknown_.insert(app->processId());
        }
    }

    void openOne() {
        auto& app = desktop_.open("App" + std::to_string(pick(6)), 1 + pick(1000));
        const auto time = std::chrono::milliseconds(pick(12000));
        if (oneIn(3))
            app.identified("id" + std::to_string(pick(4)));
        if (oneIn(8))
            app.cannotBeForced();
        const int manners = pick(6);
        manners == 0   ? app.ignoresAsking()
        : manners == 1 ? app.cannotBeAsked()
        : manners == 2 ? app.livesOnWithoutWindows()
                       : app.quitsAfter(time);
        apps_.push_back(&app);
    }

    void endOne() {
        if (!apps_.empty())
            anyOf(apps_)->end();
    }

    void changeDrives() {
        oneIn(2) ? desktop_.volumes.mountStick("s" + std::to_string(pick(3)), pick(5))
                 : desktop_.volumes.unmount("/media/s" + std::to_string(pick(3)));
    }

    /// The tool may succeed, fail, hang for long, say nonsense, or not be there.
    void changeBackups() {
        auto& tool = desktop_.backupTool;
        if (!oneIn(3))
            tool.configure();
        tool.launchError = perhaps(6, "no tool");
        tool.duration = std::chrono::milliseconds(1 + pick(20000));
        tool.exitStatus = oneIn(4) ? 1 : 0;
        tool.errorOutput = oneIn(2) ? "why\n" : "";
        tool.recordDelay = std::chrono::seconds(pick(30));
        tool.recordedAt = oneIn(5) ? std::nullopt : std::optional<Duration>(0s);
        tool.progress = [odd = oneIn(5)](Duration time) {
            return odd ? -1.0 + static_cast<double>(time.count() % 7)
                       : static_cast<double>(time.count()) / 2e10;
        };
        desktop_.endService.failure = perhaps(3, "refused");
        desktop_.endService.cannotAsk = perhaps(2, "nobody");
        desktop_.endService.ready = !oneIn(4);
    }

    /// Windows that no list of applications shows.
    void changeWindows() {
        const auto& added = desktop_.windows.added();
        if (oneIn(3))
            desktop_.windows.add({.name = "Hidden" + std::to_string(pick(3))}, oneIn(3), !oneIn(4));
        else if (!added.empty())
            desktop_.windows.close(anyOf(added).id);
    }

    /// Somebody begins to work, or has done enough; some go to the tray meanwhile.
    void changeWork() {
        desktop_.processes.jobs.clear();
        if (oneIn(3))
            desktop_.processes.jobs.push_back(
                {10000 + pick(1000), "job" + std::to_string(pick(2))});
        if (apps_.empty())
            return;
        auto& app = *anyOf(apps_);
        const ProcessId id = app.processId();
        if (oneIn(2) || app.isTerminated()) {
            desktop_.processes.doing.erase(id);
            busySince_.erase(id);
            return;
        }
        busySince_.try_emplace(id, desktop_.loop.uptime());
        desktop_.processes.doing[id] = [this] {
            return ProcessWork{.processorTime = desktop_.loop.uptime().sinceStart * 3 / 10};
        };
        if (oneIn(3))
            desktop_.windows.inTray.insert(id);
        if (!oneIn(4))
            app.withoutWindows();
    }

    void changeAccount() {
        auto& account = desktop_.registry.account;
        desktop_.registry.answerTime = oneIn(2) ? 0ms : std::chrono::milliseconds(pick(3000));
        account = oneIn(12) ? std::nullopt : std::optional(SessionAccount{});
        if (!account)
            return;
        if (oneIn(4))
            account->otherUsers.push_back("anna");
        if (oneIn(3))
            account->inhibitors.push_back(
                {oneIn(2) ? Inhibitor::Against::shutdown : Inhibitor::Against::sessionEnd, "apt",
                 std::to_string(pick(2)), 7, ""});
        account->hasSecondSession = oneIn(8);
        desktop_.workspace.seen = oneIn(4) ? Sight::noWindowList : Sight::all;
        desktop_.input.since = std::chrono::seconds(pick(240));
    }

    /// All that is open goes, and nothing stands in the way of anything any more.
    void comeToRest() {
        desktop_.registry.account = SessionAccount{};
        desktop_.workspace.seen = Sight::all;
        desktop_.endService.ready = true;
        desktop_.processes.doing.clear();
        busySince_.clear();
        while (!desktop_.windows.added().empty())
            desktop_.windows.close(desktop_.windows.added().front().id);
        for (SimulatedApplication* app : apps_)
            app->end();
    }

    SimulatedDesktop desktop_;
    ActionRunner actions_{desktop_.loop, desktop_.kernel, desktop_.formats};
    SimulatedNotice notice_{[](std::string_view) {}};
    std::unique_ptr<SessionEnd> end_;
    std::unique_ptr<EndNotice> endNotice_;
    std::unique_ptr<Settings> settings_;
    std::unique_ptr<QuitController> controller_;
    std::unique_ptr<RemoteControl> control_;
    std::vector<SimulatedApplication*> apps_;
    /// Since when processes have been at work.
    std::map<ProcessId, Uptime> busySince_;
    /// Processes of which the program that runs now has seen no window.
    std::set<ProcessId> unknown_;

private:
    std::optional<std::string> perhaps(int times, const char* text) {
        return oneIn(times) ? std::optional<std::string>(text) : std::nullopt;
    }

    std::mt19937 random_;
};

} // namespace velmorquit
