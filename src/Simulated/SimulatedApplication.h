#pragma once

#include "Loop/MainLoop.h"
#include "Platform/RunningApplication.h"

#include <functional>
#include <string_view>

namespace velmorquit {

/// An application of the simulated desktop. The operations that return it set its behaviour; by
/// default it quits at once when asked.
class SimulatedApplication final : public RunningApplication {
public:
    /// The services of its desktop.
    struct Surroundings {
        MainLoop& loop;
        std::function<void(std::string_view)> log;
        std::function<void()> ended;
        std::function<void()> policyChanged;
    };

    SimulatedApplication(ProcessId id, std::string name, std::uint64_t memory,
                         Surroundings surroundings);

    SimulatedApplication& identified(std::string bundle);
    SimulatedApplication& alsoKnownAs(std::string identity);
    SimulatedApplication& withoutName();
    /// Has appeared only now, and may become better known.
    SimulatedApplication& unsettled();
    /// Gets this identity; the former one stays among the others.
    SimulatedApplication& settled(std::string name, std::string bundle);
    SimulatedApplication& withIcon(Icon icon);
    /// Runs without windows from the start.
    SimulatedApplication& withoutWindows();
    /// Shows a window again.
    SimulatedApplication& withWindows();
    SimulatedApplication& quitsAfter(Duration time);
    /// Asks the user about unsaved work, who answers after that time.
    SimulatedApplication& asksToSaveFor(Duration time) { return quitsAfter(time); }
    /// Ignores requests to quit.
    SimulatedApplication& ignoresAsking();
    /// Can't be asked at all.
    SimulatedApplication& cannotBeAsked();
    /// Sets or removes an obstacle to asking it.
    SimulatedApplication& hindered(std::optional<StayReason> obstacle);
    SimulatedApplication& usedAt(std::optional<Uptime> time);
    /// Its process belongs to another user.
    SimulatedApplication& cannotBeForced();
    /// Needs that long to end when forced.
    SimulatedApplication& endsWhenForcedAfter(Duration time);
    /// Closes its windows when asked, and goes on running.
    SimulatedApplication& livesOnWithoutWindows();
    /// Closes its windows when asked, and ends when asked again without any.
    SimulatedApplication& needsToBeAskedTwice();

    /// Ends by itself now: a crash, or the user's own doing.
    void end();
    /// Sets the reason that the desktop sees for its staying.
    void setStayReason(StayReason reason) { reason_ = reason; }
    void setMemory(std::uint64_t bytes) { memory_ = bytes; }
    [[nodiscard]] std::uint64_t memory() const { return memory_; }

    [[nodiscard]] ProcessId processId() const override { return id_; }
    [[nodiscard]] std::optional<std::string> localizedName() const override { return name_; }
    [[nodiscard]] std::optional<std::string> bundleIdentifier() const override { return bundle_; }
    [[nodiscard]] std::vector<std::string> otherIdentities() const override { return others_; }
    [[nodiscard]] bool isIdentitySettled() const override { return isSettled_; }
    [[nodiscard]] std::optional<std::string> bundlePath() const override;
    [[nodiscard]] std::optional<WallTime> launchDate() const override { return launchDate_; }
    [[nodiscard]] std::shared_ptr<const Icon> icon() const override { return icon_; }
    [[nodiscard]] StayReason stayReason() override { return reason_; }
    [[nodiscard]] ActivationPolicy activationPolicy() const override { return policy_; }
    [[nodiscard]] bool isTerminated() const override { return isTerminated_; }
    bool terminate(AskedBy who) override;
    void takeBack() override {}
    [[nodiscard]] std::optional<StayReason> obstacle() override;
    [[nodiscard]] std::optional<Uptime> lastUsed() const override { return lastUsed_; }
    bool forceTerminate() override;
    bool activate() override;

private:
    enum class Manners { quits, ignores, cannotBeAsked, losesWindows, endsWithoutWindows };

    void log(std::string_view what) const;

    ProcessId id_;
    std::string label_;
    std::optional<std::string> name_;
    std::optional<std::string> bundle_;
    std::vector<std::string> others_;
    std::uint64_t memory_;
    Surroundings surroundings_;
    WallTime launchDate_;
    std::shared_ptr<const Icon> icon_ = std::make_shared<Icon>();
    StayReason reason_ = StayReason::unknown;
    std::optional<StayReason> obstacle_;
    std::optional<Uptime> lastUsed_;
    ActivationPolicy policy_ = ActivationPolicy::regular;
    Manners manners_ = Manners::quits;
    Duration quitTime_{};
    Duration forceTime_{};
    bool canBeForced_ = true;
    bool isSettled_ = true;
    bool isTerminated_ = false;
    Handle quitting_;
    Handle forcing_;
};

} // namespace velmorquit
