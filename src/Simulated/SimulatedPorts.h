#pragma once

#include "Platform/Application.h"
#include "Platform/Kernel.h"
#include "Platform/RemoteCommands.h"
#include "Platform/SystemLog.h"
#include "Simulated/SimulatedWorkspace.h"

#include <string>
#include <vector>

namespace velmorquit {

/// Knows of the memory of the simulated applications; this program is process 1.
class SimulatedKernel final : public Kernel {
public:
    explicit SimulatedKernel(const SimulatedWorkspace& workspace) : workspace_(workspace) {}
    [[nodiscard]] ProcessId ownProcessId() const override { return 1; }
    [[nodiscard]] std::optional<std::uint64_t> footprint(ProcessId id) const override {
        return isBlind ? std::nullopt : workspace_.memoryOf(id);
    }

    /// Whether it fails to know anything.
    bool isBlind = false;

private:
    const SimulatedWorkspace& workspace_;
};

class SimulatedSystemLog final : public SystemLog {
public:
    void write(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

/// Lets a test be the other process.
class SimulatedRemoteCommands final : public RemoteCommands {
public:
    bool serve(std::function<RemoteAnswer(const RemoteCommand&)> handler) override {
        handler_ = std::move(handler);
        return true;
    }
    void announce(std::string_view change) override { changes.emplace_back(change); }

    RemoteAnswer give(std::string verb, std::vector<std::string> arguments = {}) {
        return handler_({std::move(verb), std::move(arguments)});
    }

    std::vector<std::string> changes;

private:
    std::function<RemoteAnswer(const RemoteCommand&)> handler_;
};

class SimulatedProgram final : public Application {
public:
    void terminate() override { isTerminated = true; }

    bool isTerminated = false;
};

} // namespace velmorquit
