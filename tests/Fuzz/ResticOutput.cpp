#include "Fuzz/Fuzz.h"
#include "Tools/velmorquit-tmutil/ResticAnswers.h"
#include "Tools/velmorquit-tmutil/ResticReport.h"

using namespace velmorquit::tmutil;

/// All that restic prints, as reports line by line and as an answer as a whole.
void velmorquit::fuzz::examine(std::string_view bytes) {
    const std::string output(bytes);
    ResticReport report;
    for (const std::string& line : split(output, '\n')) {
        const double before = report.fraction().value_or(0);
        report.hear(line);
        const double fraction = report.fraction().value_or(0);
        require(fraction >= before && fraction <= 1, "progress is a fraction and only grows");
    }
    require(report.files() >= 0 && report.unreadable() >= 0, "files are counted");
    require(isUtf8(report.unreadablePath()), "a path is a text");
    WallTime last = WallTime::min();
    for (const Snapshot& snapshot : ResticAnswers::snapshots(output)) {
        require(snapshot.date >= last, "the oldest comes first");
        last = snapshot.date;
    }
    require(ResticAnswers::removed(output).size() <= bytes.size(), "what was removed was named");
    const std::string line = ResticAnswers::lastLine(output);
    require(isUtf8(line) && line.size() <= 3 * bytes.size(), "a line is a text");
}
