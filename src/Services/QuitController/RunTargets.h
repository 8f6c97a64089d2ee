#pragma once

#include "Loop/MainLoop.h"
#include "Services/QuitController/RunStatus.h"
#include "Services/QuitController/RunningApplications.h"

#include <map>
#include <optional>
#include <set>
#include <vector>

namespace velmorquit {

/// The applications that a run asks to quit, and how each of them has been asked.
class RunTargets {
public:
    /// How long an application lives on without windows before it is asked once more, in the way
    /// that is left, after the grace period.
    static constexpr Duration windowlessPatience = 1s;
    /// How often it is looked whether an obstacle has gone.
    static constexpr Duration obstacleInterval = 1s;
    /// An application that could not be asked, for an obstacle, is asked when that goes; but not
    /// while it is used, nor soon after that.
    static constexpr Duration restBeforeAsking = 30s;
    /// An obstacle that is gone so soon was none.
    static constexpr Duration beginning = 3s;

    /// Both outlive it.
    RunTargets(MainLoop& loop, const RunningApplications& applications, std::vector<OpenApp> list);

    /// With their figures of the run's beginning.
    [[nodiscard]] const std::vector<OpenApp>& list() const { return list_; }
    [[nodiscard]] std::vector<OpenApp> running() const;
    [[nodiscard]] std::vector<OpenApp> closed() const;
    [[nodiscard]] static RunResult resultOf(const std::vector<OpenApp>& closed);

    /// Asks those that are known for good by now. True when some were spared, which are none of
    /// the targets any more.
    bool ask();

    /// Notes which of them have no windows.
    void noteWindowless(const std::vector<OpenApp>& running);
    void askWindowless(const std::vector<OpenApp>& running);

    /// Something stands in the way of asking that one.
    void noteHindered(ProcessId id) { hindered_.try_emplace(id); }
    void askHindered(const std::vector<OpenApp>& running);

    /// Somebody else has asked that one.
    void noteAsked(ProcessId id) { hindered_.erase(id); }

    [[nodiscard]] static std::map<ProcessId, StayReason>
    reasonsOf(const std::vector<OpenApp>& running);

    /// What was not said to them so far isn't said any more, and they count as they are known now.
    void stopAsking();

private:
    void renew();
    [[nodiscard]] bool isSpared(const OpenApp& target) const;
    [[nodiscard]] bool isFree(const OpenApp& app, Uptime now) const;

    MainLoop& loop_;
    const RunningApplications& applications_;
    std::vector<OpenApp> list_;
    /// Those of them that are not asked yet, since they may turn out to be others.
    std::set<ProcessId> unsettled_;
    /// When targets were first seen without windows; those that were asked once more have no time.
    std::map<ProcessId, std::optional<Uptime>> windowlessSince_;
    /// Targets that could not be asked, with the moment from which on nothing stood in the way.
    std::map<ProcessId, std::optional<Uptime>> hindered_;
    Uptime lookForObstaclesAt_;
    Uptime beginningUntil_;
};

} // namespace velmorquit
