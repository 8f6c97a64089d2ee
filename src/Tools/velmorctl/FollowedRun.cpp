#include "FollowedRun.h"

#include "Sentences.h"
#include "Texts/Localized.h"

#include <QLocale>

#include <iostream>

namespace velmorquit {

namespace changes = remote::changes;

FollowedRun::FollowedRun(const CommandLine& line, const Formats& formats)
    : line_(line), formats_(formats) {}

void FollowedRun::begin(const std::vector<remote::Application>& asked) {
    elapsed_.start();
    asked_ = static_cast<int>(asked.size());
    stage_ = Stage::running;
    if (asked_ == 0)
        std::cout << localized("Non c'è niente da chiudere.") << '\n' << std::flush;
}

std::optional<ExitStatus> FollowedRun::hear(const remote::Change& change) {
    const auto* ending = std::get_if<changes::EndingState>(&change);
    if (stage_ == Stage::ending && ending)
        return hearEnding(ending->ending);
    // An end requested by an earlier run may be given up while this run goes on.
    if (stage_ != Stage::running || ending)
        return std::nullopt;
    const auto* happened = std::get_if<changes::Happened>(&change);
    // Drives that the user began to eject before the run are reported before those of the run.
    if (const auto* ejected =
            happened ? std::get_if<events::DisksEjected>(&happened->event) : nullptr)
        isDriveLeft_ = !ejected->failed.empty();
    const auto* run = std::get_if<changes::Run>(&change);
    // Applications that turned out to be excluded are no longer targets.
    if (const auto* quitting = run ? std::get_if<phases::Quitting>(&run->state.phase) : nullptr)
        asked_ = quitting->total;
    const auto* done = run ? std::get_if<phases::Done>(&run->state.phase) : nullptr;
    // If nothing was asked to quit, only a note adds information.
    const bool isEmpty = asked_ == 0 && done && !run->state.note;
    if (const std::string text = changeText(change, formats_); !text.empty() && !isEmpty)
        say(text);
    return done ? hearResult(run->state, done->closed) : std::nullopt;
}

std::optional<ExitStatus> FollowedRun::hearResult(const remote::RunState& run, int closed) {
    // A cancelled run isn't followed by the action.
    const bool isFollowed = line_.then == AfterQuit::nothing || run.then == powerAction(line_.then);
    isGood_ = isFollowed && !isDriveLeft_ && closed == asked_;
    if (line_.then == AfterQuit::nothing || line_.endsWithRun || !isFollowed)
        return finish(ExitStatus::success);
    stage_ = Stage::ending;
    return std::nullopt;
}

std::optional<ExitStatus> FollowedRun::hearEnding(const std::optional<remote::Ending>& ending) {
    if (stage_ != Stage::ending)
        return std::nullopt;
    if (!ending) {
        say(remote::givenUpText());
        return finish(ExitStatus::failure);
    }
    if (ending->text != lastEnding_)
        say(ending->text);
    lastEnding_ = ending->text;
    switch (ending->stage) {
    case EndState::Stage::waiting:
    case EndState::Stage::naming:
        return std::nullopt;
    case EndState::Stage::underWay:
        return finish(ExitStatus::success);
    default:
        return finish(ExitStatus::failure);
    }
}

ExitStatus FollowedRun::finish(ExitStatus status) {
    stage_ = Stage::over;
    return isGood_ ? status : ExitStatus::failure;
}

void FollowedRun::say(const std::string& text) const {
    const double seconds = static_cast<double>(elapsed_.elapsed()) / 1000;
    const QString figure = QLocale().toString(seconds, 'f', 2).rightJustified(7);
    std::cout << figure.toStdString() << " s  " << text << '\n' << std::flush;
}

} // namespace velmorquit
