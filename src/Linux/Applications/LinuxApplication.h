#pragma once

#include "Linux/Applications/DesktopEntries.h"
#include "Linux/Applications/ProcessHandle.h"
#include "Linux/Applications/ProcessOrigin.h"
#include "Linux/Applications/QuitRequest.h"
#include "Linux/Windows/ToplevelSource.h"
#include "Loop/MainLoop.h"
#include "Platform/SystemLog.h"

#include <set>

namespace velmorquit {

/// What an application needs from its workspace. All of it returns at once.
class ApplicationWindows {
public:
    virtual ~ApplicationWindows() = default;
    /// Why its windows can't be asked to close now; none if they can.
    virtual std::optional<StayReason> obstacle(ProcessId process) = 0;
    /// Asks its windows to close; those of a terminal after a moment.
    virtual void askToClose(ProcessId process) = 0;
    /// Cancels requests to close that are still pending; false without any.
    virtual bool takeBack(ProcessId process) = 0;
    /// How long keyboard and pointer have been idle; none when unknown.
    virtual std::optional<Duration> sinceInput() = 0;
    /// Asks one that has no windows to quit, if it understands another way of asking. False when it
    /// has windows, runs something that would be lost, or there is no such way.
    virtual bool askWithoutWindows(ProcessId process) = 0;
    virtual bool bringToFront(ProcessId process) = 0;
    virtual std::vector<Toplevel> windowsOf(ProcessId process) = 0;
    virtual bool isInTray(ProcessId process) = 0;
    /// Does the same as a click on its icon in the tray. False when it has none.
    virtual bool clickInTray(ProcessId process) = 0;
    /// Whether one of its windows has left a ping unanswered; pings them for the next time.
    virtual bool isDeaf(ProcessId process) = 0;
};

/// A process that owns windows, or did.
class LinuxApplication final : public RunningApplication {
public:
    /// Time between the polite signal and the one that can't be caught.
    static constexpr Duration killDelay = 2s;

    struct Surroundings {
        MainLoop& loop;
        SystemLog& log;
        /// Empty once the workspace is gone.
        std::weak_ptr<ApplicationWindows> windows;
    };

    /// `picture` is its window's icon, used when no desktop entry gives one.
    LinuxApplication(std::unique_ptr<ProcessHandle> process, Identity identity,
                     const ProcessOrigin& origin, Image picture, Surroundings surroundings);

    /// Adds a further identity that the process has shown.
    void addIdentity(const Identity& identity);
    /// Switches to this identity if it is better, or another makeshift in place of a makeshift;
    /// true then. The former identity still counts among the others.
    bool improve(const Identity& identity);
    /// From now on its identity is final.
    void settle() { isSettled_ = true; }
    [[nodiscard]] Identity::Basis basis() const { return identity_.basis; }
    void setPolicy(ActivationPolicy policy) { policy_ = policy; }
    /// Notes that one of its windows is open now.
    void noteWindow(std::uint64_t window) { request_.note(window, surroundings_.loop.uptime()); }
    void noteKeyboard(bool hasKeyboard);
    /// Whether everything it has shown is meant to be hidden from the user.
    [[nodiscard]] bool isHidden() const { return isHidden_; }
    /// Without windows it doesn't concern the user.
    [[nodiscard]] bool isBackground() const { return isHidden_ || isBackground_; }
    [[nodiscard]] bool isService() const { return isService_; }
    /// It was a service, and its last window has closed.
    void leave() { hasLeft_ = true; }
    [[nodiscard]] bool hasLeft() const { return hasLeft_; }

    [[nodiscard]] ProcessId processId() const override { return process_->id(); }
    [[nodiscard]] std::optional<std::string> localizedName() const override;
    [[nodiscard]] std::optional<std::string> bundleIdentifier() const override {
        return identity_.id;
    }
    [[nodiscard]] std::vector<std::string> otherIdentities() const override {
        return {otherKeys_.begin(), otherKeys_.end()};
    }
    [[nodiscard]] bool isIdentitySettled() const override {
        return isSettled_ || surroundings_.windows.expired();
    }
    [[nodiscard]] std::optional<std::string> bundlePath() const override;
    [[nodiscard]] std::optional<WallTime> launchDate() const override { return launchDate_; }
    [[nodiscard]] std::shared_ptr<const Icon> icon() const override { return icon_; }
    [[nodiscard]] ActivationPolicy activationPolicy() const override { return policy_; }
    [[nodiscard]] bool isTerminated() const override { return hasLeft_ || process_->hasEnded(); }
    bool terminate(AskedBy who) override;
    void takeBack() override;
    [[nodiscard]] std::optional<StayReason> obstacle() override;
    [[nodiscard]] std::optional<Uptime> lastUsed() const override;
    [[nodiscard]] StayReason stayReason() override;
    /// Sends a polite signal first, the final one two seconds later.
    bool forceTerminate() override;
    bool activate() override;

private:
    void noteKey(const std::string& key);
    /// When the user last typed or clicked while it had the keyboard; none if never.
    [[nodiscard]] std::optional<Uptime> workedWith() const;

    std::unique_ptr<ProcessHandle> process_;
    Identity identity_;
    bool isSettled_;
    std::set<std::string> otherKeys_;
    std::shared_ptr<const Icon> icon_;
    std::optional<WallTime> launchDate_;
    bool isHidden_;
    bool isService_;
    bool isBackground_;
    bool hasLeft_ = false;
    Surroundings surroundings_;
    ActivationPolicy policy_ = ActivationPolicy::regular;
    QuitRequest request_;
    bool hasKeyboard_ = false;
    Uptime keyboardSince_;
    /// The value of `workedWith` when it last lost the keyboard.
    std::optional<Uptime> workedWith_;
    std::optional<Uptime> hadKeyboardAt_;
    Handle killing_;
};

} // namespace velmorquit
