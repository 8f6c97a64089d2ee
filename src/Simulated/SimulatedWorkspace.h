#pragma once

#include "Platform/WorkspaceObservers.h"
#include "Simulated/SimulatedApplication.h"

#include <string_view>

namespace velmorquit {

/// The applications of the simulated desktop.
class SimulatedWorkspace final : public Workspace {
public:
    explicit SimulatedWorkspace(std::function<void(std::string_view)> log) : log_(std::move(log)) {}

    void add(std::shared_ptr<SimulatedApplication> application);
    /// Starts and ends also change which application is in front.
    void tell(WorkspaceEvent event, ProcessId process);
    void setDefaultExclusions(std::vector<std::string> keys) { exclusions_ = std::move(keys); }

    /// The memory of the process, none if it doesn't exist.
    [[nodiscard]] std::optional<std::uint64_t> memoryOf(ProcessId id) const;

    [[nodiscard]] std::vector<std::shared_ptr<RunningApplication>> runningApplications() override;
    [[nodiscard]] Sight sight() override { return seen; }
    /// The last one that started.
    [[nodiscard]] std::shared_ptr<RunningApplication> frontmostApplication() const override;
    [[nodiscard]] Handle observe(std::function<void(const WorkspaceChanges&)> told) override {
        return observers_.add(std::move(told));
    }
    void open(const std::string& path) override;
    [[nodiscard]] std::shared_ptr<const Icon> icon(const std::string& path) const override {
        const auto found = icons.find(path);
        return found == icons.end() ? std::make_shared<Icon>() : found->second;
    }
    [[nodiscard]] std::vector<std::string> defaultExclusions() const override {
        return exclusions_;
    }

    /// How much of the session is seen.
    Sight seen = Sight::all;

    /// Called with the path to be opened; nothing starts by itself.
    std::function<void(const std::string& path)> onOpen;

    /// By the paths of their applications.
    std::map<std::string, std::shared_ptr<const Icon>> icons;

private:
    std::function<void(std::string_view)> log_;
    std::vector<std::shared_ptr<SimulatedApplication>> applications_;
    std::vector<std::string> exclusions_;
    ProcessId front_ = 0;
    WorkspaceObservers observers_;
};

} // namespace velmorquit
