#pragma once

#include "CommandLine.h"
#include "Platform/Formats.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>

#include <optional>
#include <string>

namespace velmorquit {

/// The run that velmorctl has begun, from what the program tells of it: prints a line for what
/// happens and says with which status the wait for it ends.
class FollowedRun {
public:
    FollowedRun(const CommandLine& line, const Formats& formats);

    /// The run has begun, and has asked these to quit.
    void begin(const QJsonArray& asked);

    /// None while there is something to wait for. Changes before the run's beginning are none of
    /// it.
    [[nodiscard]] std::optional<ExitStatus> hear(const QJsonObject& change);

    /// How far the session's end has come: null when nobody wants it any more. None while there is
    /// something to wait for.
    [[nodiscard]] std::optional<ExitStatus> hearEnding(const QJsonValue& ending);

    /// Whether the run is over, and what follows it is waited for.
    [[nodiscard]] bool isEnding() const { return stage_ == Stage::ending; }

private:
    enum class Stage { notBegun, running, ending, over };

    std::optional<ExitStatus> hearResult(const QJsonObject& change);
    [[nodiscard]] ExitStatus finish(ExitStatus status);
    void say(const std::string& text) const;

    const CommandLine& line_;
    const Formats& formats_;
    QElapsedTimer elapsed_;
    Stage stage_ = Stage::notBegun;
    qsizetype asked_ = 0;
    bool isDriveLeft_ = false;
    /// Whether the run has done all that it was to do.
    bool isGood_ = false;
    QString lastEnding_;
};

} // namespace velmorquit
