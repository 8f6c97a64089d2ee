#include "Fuzz/Fuzz.h"
#include "Tools/velmorquit-tmutil/ResticAnswers.h"
#include "Tools/velmorquit-tmutil/ResticReport.h"

using namespace velmorquit;
using namespace velmorquit::tmutil;

/// What restic prints, as reports line by line and as an answer as a whole.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string output(reinterpret_cast<const char*>(data), size);
    ResticReport report;
    for (const std::string& line : fuzz::split(output, '\n')) {
        const double before = report.fraction().value_or(0);
        report.hear(line);
        const double fraction = report.fraction().value_or(0);
        fuzz::require(fraction >= before && fraction <= 1, "progress is a fraction and only grows");
    }
    fuzz::require(report.files() >= 0 && report.unreadable() >= 0, "files are counted");
    fuzz::require(fuzz::isUtf8(report.unreadablePath()), "a path is a text");
    WallTime last = WallTime::min();
    for (const Snapshot& snapshot : ResticAnswers::snapshots(output)) {
        fuzz::require(snapshot.date >= last, "the oldest comes first");
        last = snapshot.date;
    }
    fuzz::require(ResticAnswers::removed(output).size() <= size, "what was removed was named");
    const std::string line = ResticAnswers::lastLine(output);
    fuzz::require(fuzz::isUtf8(line) && line.size() <= 3 * size, "a line is a text");
    return 0;
}
