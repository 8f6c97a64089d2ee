#pragma once

#include "Loop/MainLoop.h"
#include "Services/QuitController/RunStatus.h"
#include "Services/QuitController/RunningApplications.h"

#include <map>
#include <optional>
#include <set>
#include <vector>

namespace velmorquit {

/// The applications that a run asks to quit, and how far it has got with each.
class RunTargets {
public:
    /// How long an application lives on without windows, after the grace period, before it is asked
    /// once more in whatever other way it understands.
    static constexpr Duration windowlessPatience = 1s;
    /// How often to look whether an obstacle has gone.
    static constexpr Duration obstacleInterval = 1s;
    /// An application that an obstacle kept from being asked is asked once that goes, but not while
    /// it is in use nor this soon afterwards.
    static constexpr Duration restBeforeAsking = 30s;
    /// An obstacle that goes away within this time never was one.
    static constexpr Duration beginning = 3s;

    /// Both references must outlive it.
    RunTargets(MainLoop& loop, const RunningApplications& applications, std::vector<OpenApp> list);

    /// With their figures from the run's beginning.
    [[nodiscard]] const std::vector<OpenApp>& list() const { return list_; }
    [[nodiscard]] std::vector<OpenApp> running() const;
    [[nodiscard]] std::vector<OpenApp> closed() const;
    [[nodiscard]] static RunResult resultOf(const std::vector<OpenApp>& closed);

    /// Asks those whose identity is certain by now. True when some turned out to be spared; they
    /// are no longer targets.
    bool ask();

    /// Notes which of them have no windows.
    void noteWindowless(const std::vector<OpenApp>& running);
    void askWindowless(const std::vector<OpenApp>& running);

    /// An obstacle kept that application from being asked.
    void noteHindered(ProcessId id) { hindered_.try_emplace(id); }
    void askHindered(const std::vector<OpenApp>& running);

    /// Somebody else has asked that application.
    void noteAsked(ProcessId id) { hindered_.erase(id); }

    [[nodiscard]] static std::map<ProcessId, StayReason>
    reasonsOf(const std::vector<OpenApp>& running);

    /// Withdraws requests not yet made, and updates the targets' identities.
    void stopAsking();

private:
    void renew();
    [[nodiscard]] bool isSpared(const OpenApp& target) const;
    [[nodiscard]] bool isFree(const OpenApp& app, Uptime now) const;

    MainLoop& loop_;
    const RunningApplications& applications_;
    std::vector<OpenApp> list_;
    /// Targets not asked yet, since they may turn out to be other applications.
    std::set<ProcessId> unsettled_;
    /// When targets were first seen without windows; none for those already asked once more.
    std::map<ProcessId, std::optional<Uptime>> windowlessSince_;
    /// Targets that could not be asked, with the moment since which nothing has stood in the way.
    std::map<ProcessId, std::optional<Uptime>> hindered_;
    Uptime lookForObstaclesAt_;
    Uptime beginningUntil_;
};

} // namespace velmorquit
