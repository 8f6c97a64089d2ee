#pragma once

#include "Loop/MainLoop.h"
#include "Platform/ChildProcesses.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// The backup tool of the simulated desktop: a program that is run, and a file that it keeps.
class SimulatedBackupTool final : public ChildProcesses {
public:
    SimulatedBackupTool(MainLoop& loop, std::function<void(std::string_view)> log)
        : loop_(loop), log_(std::move(log)) {}

    /// Adds a place for backups.
    void configure() { isConfigured_ = true; }

    /// The newest backup made before the test.
    std::optional<WallTime> earlierBackup;
    std::optional<std::string> launchError;
    Duration duration = 10s;
    int exitStatus = 0;
    std::string errorOutput;
    /// The recorded time of a backup, from its beginning; none when none is recorded.
    std::optional<Duration> recordedAt = Duration::zero();
    /// How long after the tool's end the record appears.
    Duration recordDelay{};
    /// The reported progress at a time since the beginning.
    std::function<double(Duration)> progress = [this](Duration time) {
        return static_cast<double>(time.count()) / static_cast<double>(duration.count());
    };
    /// Called while the tool stops a backup.
    std::function<void()> onStop;

    [[nodiscard]] Result run(const std::string& program,
                             const std::vector<std::string>& arguments) override;
    [[nodiscard]] std::variant<std::shared_ptr<ChildProcess>, std::string>
    launch(const std::string& program, const std::vector<std::string>& arguments) override;
    /// The content of its file of destinations; none while there is no such file.
    [[nodiscard]] std::optional<std::string> destinations() const;

private:
    class Backup;

    [[nodiscard]] Duration sinceBeginning() const;
    [[nodiscard]] bool isRunning() const;

    MainLoop& loop_;
    std::function<void(std::string_view)> log_;
    bool isConfigured_ = false;
    std::optional<WallTime> began_;
    Uptime beganAt_;
    bool isStopped_ = false;
};

} // namespace velmorquit
