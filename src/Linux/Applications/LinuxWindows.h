#pragma once

#include "Linux/Applications/LinuxWorkspace.h"
#include "Linux/Windows/ToplevelSource.h"
#include "Platform/Windows.h"

#include <functional>
#include <set>

namespace velmorquit {

/// The windows of a Linux desktop, with the names by which the workspace knows their programs.
class LinuxWindows final : public Windows {
public:
    struct Surroundings {
        /// Asks a process without windows to quit; may be empty.
        std::function<void(ProcessId)> askWithoutWindows;
        /// The processes that have an icon in the tray; may be empty.
        std::function<std::set<ProcessId>()> trayOwners;
    };

    /// Both references must outlive it.
    LinuxWindows(ToplevelSource& source, LinuxWorkspace& workspace, Surroundings surroundings)
        : source_(source), workspace_(workspace), surroundings_(std::move(surroundings)) {}

    [[nodiscard]] std::vector<OpenWindow> open() override;
    bool askToClose(std::uint64_t window) override;
    void askWithoutWindows(ProcessId process) override;
    [[nodiscard]] std::set<ProcessId> trayOwners() override;
    [[nodiscard]] Handle observe(std::function<void()> told) override {
        return source_.observe(std::move(told));
    }

private:
    [[nodiscard]] WindowOwner ownerOf(const Toplevel& toplevel);

    ToplevelSource& source_;
    LinuxWorkspace& workspace_;
    Surroundings surroundings_;
    /// Windows that must not be asked a second time.
    std::set<std::uint64_t> askedOnce_;
};

} // namespace velmorquit
