#pragma once

#include "CommandLine.h"
#include "Platform/Formats.h"
#include "Remote/ChangeJson.h"

#include <QElapsedTimer>

#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// The run that velmorctl has begun, as the program reports it: prints a line for each event and
/// tells the exit status when the wait is over.
class FollowedRun {
public:
    FollowedRun(const CommandLine& line, const Formats& formats);

    /// The run has begun, and has asked these to quit.
    void begin(const std::vector<remote::Application>& asked);

    /// None while there is something to wait for. Changes before the beginning of the run are
    /// ignored.
    [[nodiscard]] std::optional<ExitStatus> hear(const remote::Change& change);

    /// How far the end of the session has come, unless nobody wants it any more. None while there
    /// is something to wait for.
    [[nodiscard]] std::optional<ExitStatus> hearEnding(const std::optional<remote::Ending>& ending);

    /// Whether the run is over and the action after it is awaited.
    [[nodiscard]] bool isEnding() const { return stage_ == Stage::ending; }

private:
    enum class Stage { notBegun, running, ending, over };

    std::optional<ExitStatus> hearResult(const remote::RunState& run, int closed);
    [[nodiscard]] ExitStatus finish(ExitStatus status);
    void say(const std::string& text) const;

    const CommandLine& line_;
    const Formats& formats_;
    QElapsedTimer elapsed_;
    Stage stage_ = Stage::notBegun;
    int asked_ = 0;
    bool isDriveLeft_ = false;
    /// Whether the run has done everything it should.
    bool isGood_ = false;
    std::string lastEnding_;
};

} // namespace velmorquit
