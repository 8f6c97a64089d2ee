#pragma once

#include "Linux/Applications/DesktopEntries.h"
#include "Linux/Applications/ProcessHandle.h"
#include "Platform/MainLoop.h"
#include "Platform/SystemLog.h"

#include <set>

namespace velmorquit {

/// What an application can ask of the workspace that it belongs to.
class ApplicationWindows {
public:
    virtual ~ApplicationWindows() = default;
    /// Asks its windows to close; false when none of them can be asked.
    virtual bool askToClose(ProcessId process) = 0;
    virtual bool bringToFront(ProcessId process) = 0;
};

/// A process that owns windows, or did.
class LinuxApplication final : public RunningApplication {
public:
    /// Time between the signal that a process may answer and the one that it can't.
    static constexpr Duration killDelay = 2s;

    struct Surroundings {
        MainLoop& loop;
        SystemLog& log;
        /// Empty once the workspace has gone.
        std::weak_ptr<ApplicationWindows> windows;
    };

    LinuxApplication(std::unique_ptr<ProcessHandle> process, Identity identity,
                     Surroundings surroundings);

    /// Takes note of a further identity that the process shows.
    void addIdentity(const Identity& identity);
    void setPolicy(ActivationPolicy policy) { policy_ = policy; }

    [[nodiscard]] ProcessId processId() const override { return process_->id(); }
    [[nodiscard]] std::optional<std::string> localizedName() const override;
    [[nodiscard]] std::optional<std::string> bundleIdentifier() const override {
        return identity_.id;
    }
    [[nodiscard]] std::vector<std::string> otherIdentities() const override {
        return {otherKeys_.begin(), otherKeys_.end()};
    }
    [[nodiscard]] std::optional<std::string> bundlePath() const override;
    [[nodiscard]] ActivationPolicy activationPolicy() const override { return policy_; }
    [[nodiscard]] bool isTerminated() const override { return process_->hasEnded(); }
    bool terminate() override;
    /// A polite signal first, the final one two seconds later.
    bool forceTerminate() override;
    bool activate() override;

private:
    std::unique_ptr<ProcessHandle> process_;
    Identity identity_;
    std::set<std::string> otherKeys_;
    Surroundings surroundings_;
    ActivationPolicy policy_ = ActivationPolicy::regular;
    Handle killing_;
};

} // namespace velmorquit
