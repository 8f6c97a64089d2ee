#pragma once

#include "Linux/Applications/LinuxWorkspace.h"
#include "Linux/Loop/QtMainLoop.h"
#include "Linux/X11/X11Toplevels.h"
#include "Simulated/SimulatedPorts.h"
#include "support/Child.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

/// The applications of a real X server with a real window manager.
class WorkspaceTest : public testing::Test {
protected:
    WorkspaceTest()
        : toplevels(loop, log, *X11Connection::open()), workspace(loop, log, toplevels, {}) {
        watch = workspace.observe([this](const WorkspaceChanges& changes) {
            events.insert(events.end(), changes.begin(), changes.end());
        });
    }

    Child& start(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), RUDE_CLIENT);
        children.push_back(std::make_unique<Child>(arguments));
        Child& child = *children.back();
        EXPECT_TRUE(waitUntil([&] { return child.output().starts_with("ready"); }));
        return child;
    }

    /// Starts a client and waits until the workspace knows it.
    std::shared_ptr<RunningApplication> open(std::vector<std::string> arguments = {}) {
        const pid_t id = start(std::move(arguments)).id();
        EXPECT_TRUE(waitUntil([&] { return find(id) != nullptr; }));
        return find(id);
    }

    std::shared_ptr<RunningApplication> find(ProcessId id) {
        for (auto& application : workspace.runningApplications()) {
            if (application->processId() == id)
                return application;
        }
        return nullptr;
    }

    std::size_t count(WorkspaceEvent event) const {
        return static_cast<std::size_t>(std::ranges::count(events, event, &WorkspaceChange::event));
    }

    static std::size_t timesAsked(Child& child) {
        const std::string& output = child.output();
        std::size_t times = 0;
        for (auto at = output.find("asked"); at != std::string::npos;
             at = output.find("asked", at + 1))
            ++times;
        return times;
    }

    static void installEntry(const std::string& id, const std::string& lines) {
        const std::filesystem::path folder =
            std::filesystem::path(std::getenv("XDG_DATA_HOME")) / "applications";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / (id + ".desktop"))
            << "[Desktop Entry]\nType=Application\nExec=true\n"
            << lines;
    }

    QtMainLoop loop;
    SimulatedSystemLog log;
    X11Toplevels toplevels;
    LinuxWorkspace workspace;
    std::vector<WorkspaceChange> events;
    Handle watch;
    std::vector<std::unique_ptr<Child>> children;
};

} // namespace velmorquit
