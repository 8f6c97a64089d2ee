#include "FollowedRun.h"

#include "Sentences.h"
#include "Texts/Localized.h"

#include <QLocale>

#include <iostream>

namespace velmorquit {

FollowedRun::FollowedRun(const CommandLine& line, const Formats& formats)
    : line_(line), formats_(formats) {}

void FollowedRun::begin(const QJsonArray& asked) {
    elapsed_.start();
    asked_ = asked.size();
    stage_ = Stage::running;
    if (asked_ == 0)
        std::cout << localized("Non c'è niente da chiudere.") << '\n' << std::flush;
}

std::optional<ExitStatus> FollowedRun::hear(const QJsonObject& change) {
    const bool isOfTheEnd = change["change"] == "ending";
    if (stage_ == Stage::ending && isOfTheEnd)
        return hearEnding(change["ending"]);
    // One that an earlier run had asked for may be given up while this one goes on.
    if (stage_ != Stage::running || isOfTheEnd)
        return std::nullopt;
    // What the user had begun to eject before the run ends before the drives of the run do.
    if (change["event"] == "disksEjected")
        isDriveLeft_ = !change["failed"].toArray().isEmpty();
    // One that turned out to be excluded is no target any more.
    if (change["change"] == "phase" && change["phase"] == "quitting")
        asked_ = change["total"].toInteger();
    const bool isResult = change["change"] == "phase" && change["phase"] == "done";
    // Where nothing was asked to quit only a note says more.
    const bool isEmpty = asked_ == 0 && isResult && change["note"].isNull();
    if (const std::string text = changeText(change, formats_); !text.empty() && !isEmpty)
        say(text);
    return isResult ? hearResult(change) : std::nullopt;
}

std::optional<ExitStatus> FollowedRun::hearResult(const QJsonObject& change) {
    // A run that was broken off isn't followed by what was asked for.
    const bool isFollowed = line_.then == "nothing" || change["then"] == line_.then;
    isGood_ = isFollowed && !isDriveLeft_ && change["closed"].toInteger() == asked_;
    if (line_.then == "nothing" || line_.endsWithRun || !isFollowed)
        return finish(ExitStatus::success);
    stage_ = Stage::ending;
    return std::nullopt;
}

std::optional<ExitStatus> FollowedRun::hearEnding(const QJsonValue& ending) {
    if (stage_ != Stage::ending)
        return std::nullopt;
    if (!ending.isObject()) {
        say(localized("Annullato: non spengo, non riavvio e non esco."));
        return finish(ExitStatus::failure);
    }
    const QString text = ending["text"].toString();
    if (text != lastEnding_)
        say(text.toStdString());
    lastEnding_ = text;
    const QString stage = ending["stage"].toString();
    if (stage == "waiting" || stage == "naming")
        return std::nullopt;
    return finish(stage == "underWay" ? ExitStatus::success : ExitStatus::failure);
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
