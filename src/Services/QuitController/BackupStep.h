#pragma once

#include "Loop/Task.h"
#include "Platform/Desktop.h"
#include "Services/QuitController/EventFeed.h"
#include "Services/QuitController/RunOptions.h"

#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace velmorquit {

/// How the user stops a running backup.
enum class BackupStop {
    skip,   ///< and continues with the next step
    cancel, ///< and ends the run
};

/// One backup: has the tool make it, reports progress, and waits until the backup is on record.
class BackupStep {
public:
    enum class End { completed, skipped, cancelled, failed };
    struct Outcome {
        End end = End::failed;
        std::string reason{}; ///< of a failure
    };
    /// Where it reports to; all of it outlives the step.
    struct Surroundings {
        RunOptions& options;
        const EventFeed& events;
        /// The part that is done, 0 to 1; none where the tool doesn't say.
        std::function<void(std::optional<double>)> progress;
    };

    BackupStep(const Desktop& desktop, Surroundings surroundings);

    Task<Outcome> run();

    /// Stops it within a second. Only the first request noticed counts.
    void stop(BackupStop how);

    [[nodiscard]] MainLoop& mainLoop() const { return desktop_.loop; }

private:
    Task<> watch(const ChildProcess& process);
    Task<bool> waitForRecord(WallTime started);
    [[nodiscard]] static Outcome failure(const ChildProcess& process);

    Desktop desktop_;
    Surroundings surroundings_;
    std::optional<BackupStop> stop_;
    /// Ends the pause before the next look whether the backup is on record.
    Answer<std::monostate> nextReading_;
};

} // namespace velmorquit
