#pragma once

#include "Linux/Applications/LinuxWorkspace.h"
#include "Linux/X11/X11Toplevels.h"
#include "Simulated/SimulatedPorts.h"
#include "X11/ClientsTest.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace velmorquit {

/// The applications of a real X server with a real window manager.
class WorkspaceTest : public ClientsTest {
protected:
    using App = std::shared_ptr<RunningApplication>;

    WorkspaceTest()
        : toplevels(loop, log, *X11Connection::open()), workspace(loop, log, toplevels, {}) {
        watch = workspace.observe([this](const WorkspaceChanges& changes) {
            events.insert(events.end(), changes.begin(), changes.end());
        });
    }

    /// Starts a client and waits until the workspace knows it.
    App open(Words arguments = {}) { return known(start(std::move(arguments))); }
    App known(const Child& child) {
        EXPECT_TRUE(waitUntil([&] { return find(child.id()) != nullptr; }));
        return find(child.id());
    }
    App find(ProcessId id) { return find(id, workspace); }
    static App find(ProcessId id, LinuxWorkspace& workspace) {
        const auto all = workspace.runningApplications();
        const auto found = std::ranges::find(all, id, &RunningApplication::processId);
        return found == all.end() ? nullptr : *found;
    }

    std::size_t count(WorkspaceEvent event) const {
        return static_cast<std::size_t>(std::ranges::count(events, event, &WorkspaceChange::event));
    }
    [[nodiscard]] bool comes(WorkspaceEvent event) const {
        return waitUntil([&] { return count(event) == 1; });
    }

    static std::size_t timesAsked(Child& child) {
        std::istringstream lines(child.output());
        std::size_t times = 0;
        for (std::string line; std::getline(lines, line);)
            times += line.starts_with("asked") ? 1 : 0;
        return times;
    }

    static void installEntry(const std::string& id, const std::string& lines) {
        write(std::filesystem::path(std::getenv("XDG_DATA_HOME")) / "applications" /
                  (id + ".desktop"),
              "[Desktop Entry]\nType=Application\nExec=true\n" + lines);
    }

    SimulatedSystemLog log;
    X11Toplevels toplevels;
    LinuxWorkspace workspace;
    std::vector<WorkspaceChange> events;
    Handle watch;
};

} // namespace velmorquit
