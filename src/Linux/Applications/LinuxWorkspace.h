#pragma once

#include "Linux/Applications/BackgroundStarts.h"
#include "Linux/Applications/LinuxApplication.h"
#include "Linux/Applications/WorkspaceWindows.h"
#include "Linux/Proc/ProcDirectory.h"
#include "Linux/Windows/ToplevelSource.h"
#include "Loop/MainLoop.h"
#include "Platform/Workspace.h"
#include "Platform/WorkspaceObservers.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace velmorquit {

/// The applications of a Linux session: the processes that own ordinary windows.
class LinuxWorkspace final : public Workspace {
public:
    /// How long a background service must be without windows to count as ended.
    static constexpr Duration serviceDelay = 1s;
    /// For how long after its first window an application without a desktop entry may still turn
    /// out to have one: some show a window before they identify themselves, and a launcher may
    /// put them into their unit late.
    static constexpr Duration identityDelay = 2s;

    struct Surroundings {
        /// Handles processes without windows.
        WorkspaceWindows::Surroundings withoutWindows = {};
        /// Starts the application of a desktop entry, given its path, and returns at once; may be
        /// empty.
        std::function<void(const std::string&)> launch = {};
        /// Whether the session has a display besides that of the windows; may be empty.
        std::function<bool()> hasAnotherDisplay = {};
        /// The file system of processes.
        std::string proc = "/proc";
    };

    /// The references must outlive it.
    LinuxWorkspace(MainLoop& loop, SystemLog& log, ToplevelSource& source,
                   const Surroundings& surroundings);
    ~LinuxWorkspace() override;

    [[nodiscard]] std::vector<std::shared_ptr<RunningApplication>> runningApplications() override;
    [[nodiscard]] Sight sight() override;
    [[nodiscard]] std::shared_ptr<RunningApplication> frontmostApplication() const override;
    [[nodiscard]] Handle observe(std::function<void(const WorkspaceChanges&)> told) override {
        return observers_.add(std::move(told));
    }
    void open(const std::string& path) override;
    [[nodiscard]] std::shared_ptr<const Icon> icon(const std::string& path) const override;
    /// The usual file managers, which also show the session's own windows.
    [[nodiscard]] std::vector<std::string> defaultExclusions() const override;

    /// The application of this process, whether it still runs or not; null without one.
    [[nodiscard]] std::shared_ptr<const LinuxApplication> application(ProcessId id) const;
    /// Whether something that runs in this process's windows would be lost with them.
    [[nodiscard]] bool hasJob(ProcessId id) { return windows_->hasJob(id); }

private:
    struct Member {
        std::shared_ptr<LinuxApplication> application;
        /// The identities that its windows have shown, so that each is looked up once.
        std::set<ToplevelIdentity> shown;
        /// When a service was first seen without windows.
        std::optional<Uptime> windowlessSince = {};
        RunProgram program = {};
        /// Set while its identity may still improve.
        Handle settling = {};
        /// What it was looked up by meanwhile: the window's identity and its unit's entries.
        std::set<std::pair<ToplevelIdentity, std::vector<std::string>>> lookedUp = {};
    };

    void update();
    void tellUntold();
    WorkspaceChanges readToplevels();
    void admit(const Toplevel& toplevel, WorkspaceChanges& changes);
    void noteFront(WorkspaceChanges& changes);
    bool improve(Member& member, const Toplevel& toplevel);
    void settle(ProcessId id);
    bool nameByTitle(Member& member);
    bool hasClosed(Member& member, bool hasWindows);
    void keepInBackground(ProcessId focusedProcess);
    [[nodiscard]] std::set<ProcessId> windowOwners();
    WorkspaceChanges updatePolicies(const std::set<ProcessId>& owners,
                                    const std::set<ProcessId>& ownersOfAny);
    void removeEndedLater();
    void removeEnded();
    [[nodiscard]] Member* known(ProcessId id);

    MainLoop& loop_;
    SystemLog& log_;
    ToplevelSource& source_;
    DesktopEntries entries_;
    std::shared_ptr<WorkspaceWindows> windows_;
    std::function<void(const std::string&)> launch_;
    std::function<bool()> hasAnotherDisplay_;
    BackgroundStarts starts_;
    Handle restoring_;
    ProcDirectory proc_;
    /// In the order in which they appeared.
    std::vector<Member> members_;
    /// An existing process couldn't be watched: applications are missing among the members.
    bool lacksDescriptors_ = false;
    std::weak_ptr<LinuxApplication> frontmost_;
    ProcessId front_ = 0; ///< as last reported; 0 for none
    WorkspaceObservers observers_;
    Handle watching_;
    Handle removing_;
    Handle lookingAgain_;
    /// Changes noticed while somebody was asking, to be told afterwards.
    WorkspaceChanges untold_;
    Handle telling_;
};

} // namespace velmorquit
