#pragma once

#include "Loop/MainLoop.h"
#include "Platform/Application.h"
#include "Platform/AudioProcesses.h"
#include "Platform/Kernel.h"
#include "Platform/LoginItem.h"
#include "Platform/RemoteCommands.h"
#include "Platform/SleepHold.h"
#include "Platform/SystemLog.h"
#include "Simulated/SimulatedWorkspace.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace velmorquit {

/// Knows the simulated applications as processes, and others that a test adds; this program is
/// process 1. Anything not set is unknown.
class SimulatedKernel final : public Kernel {
public:
    explicit SimulatedKernel(const SimulatedWorkspace& workspace) : workspace_(workspace) {}

    /// Adds a process without windows.
    void add(ProcessEntry process, std::uint64_t memory) {
        table_.push_back(process);
        memory_[process.id] = memory;
    }

    [[nodiscard]] ProcessId ownProcessId() const override { return 1; }
    [[nodiscard]] std::uint64_t totalMemory() const override { return total; }
    [[nodiscard]] std::optional<MemoryPages> memoryPages() const override { return pages; }
    [[nodiscard]] std::vector<ProcessEntry> processTable() const override {
        return isBlind ? std::vector<ProcessEntry>() : table_;
    }
    [[nodiscard]] std::optional<std::uint64_t> footprint(ProcessId id) const override;
    [[nodiscard]] std::set<ProcessId>
    responsibleProcesses(const std::vector<ProcessId>& ids) const override;
    [[nodiscard]] std::optional<std::string> machineModel() const override { return model; }
    [[nodiscard]] std::string processorBrand() const override { return brand; }

    /// Whether it knows nothing about processes.
    bool isBlind = false;
    std::uint64_t total = 0;
    std::optional<MemoryPages> pages;
    std::optional<std::string> model;
    std::string brand;

private:
    const SimulatedWorkspace& workspace_;
    std::vector<ProcessEntry> table_;
    std::map<ProcessId, std::uint64_t> memory_;
};

/// A sound server whose users are set by a test.
class SimulatedAudioProcesses final : public AudioProcesses {
public:
    explicit SimulatedAudioProcesses(MainLoop& loop) : loop_(loop) {}
    void busyProcesses(std::function<void(const std::vector<ProcessId>&)> told) override {
        loop_.post([this, told = std::move(told)] { told(busy); });
    }

    std::vector<ProcessId> busy;

private:
    MainLoop& loop_;
};

class SimulatedSystemLog final : public SystemLog {
public:
    void write(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

/// Lets a test act as the other process.
class SimulatedRemoteCommands final : public RemoteCommands {
public:
    bool serve(Handler handler) override {
        handler_ = std::move(handler);
        return true;
    }
    void announce(std::string_view change) override { changes.emplace_back(change); }

    RemoteAnswer give(std::string verb, std::vector<std::string> arguments = {}) {
        RemoteCommand command{std::move(verb), std::move(arguments)};
        if (handler_.mattersWhose(command))
            command.caller = caller;
        return handler_.answer(command);
    }

    /// The other process.
    RemoteCaller caller;
    std::vector<std::string> changes;

private:
    Handler handler_;
};

/// A list whose failures are set by a test.
class SimulatedLoginItem final : public LoginItem {
public:
    std::optional<std::string> add() override { return change(LoginItemStatus::enabled); }
    std::optional<std::string> remove() override { return change(LoginItemStatus::notRegistered); }
    [[nodiscard]] LoginItemStatus status() const override { return state; }

    std::optional<std::string> failure;
    LoginItemStatus state = LoginItemStatus::notRegistered;

private:
    std::optional<std::string> change(LoginItemStatus wanted) {
        if (!failure)
            state = wanted;
        return failure;
    }
};

/// Records what keeps the computer awake.
class SimulatedSleepHold final : public SleepHold {
public:
    [[nodiscard]] Handle begin(const std::string& reason) override {
        held_->reasons.emplace(++lastId_, reason);
        return {held_, lastId_};
    }

    /// In the order of their beginning, separated by commas.
    [[nodiscard]] std::string reasons() const {
        std::string text;
        for (const auto& [id, reason] : held_->reasons)
            text += (text.empty() ? "" : ", ") + reason;
        return text;
    }

private:
    struct Held final : Handle::Source {
        void cancel(std::uint64_t id) noexcept override { reasons.erase(id); }
        std::map<std::uint64_t, std::string> reasons;
    };

    std::shared_ptr<Held> held_ = std::make_shared<Held>();
    std::uint64_t lastId_ = 0;
};

class SimulatedProgram final : public Application {
public:
    void terminate() override { isTerminated = true; }

    bool isTerminated = false;
};

} // namespace velmorquit
