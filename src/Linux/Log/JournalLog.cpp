#include "Linux/Log/JournalLog.h"

#include "Linux/Log/LineLimit.h"
#include "Texts/Shown.h"

#include <chrono>
#include <mutex>
#include <string>

#include <unistd.h>

namespace velmorquit {

namespace {

struct Journal {
    std::mutex mutex;
    LineLimit limit;
};

Journal& journal() {
    static Journal common;
    return common;
}

// One write per line, so that lines of several programs don't mix. It fails when the terminal that
// reads it has gone: nothing can be done about that.
void writeLine(const std::string& line) {
    constexpr std::size_t longest = 2000;
    const std::string whole = shownText(line, longest) + '\n';
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, whole.data(), whole.size());
}

} // namespace

void JournalLog::write(std::string_view line) {
    if (isRoomForLine())
        writeLine(std::string(line));
}

bool JournalLog::isRoomForLine() {
    const std::scoped_lock lock(journal().mutex);
    LineLimit& limit = journal().limit;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    if (!limit.takes({std::chrono::duration_cast<Duration>(now)}))
        return false;
    if (const auto lost = limit.takeLost(); lost > 0)
        writeLine("Velmor Quit: " + std::to_string(lost) + " righe di registro tralasciate");
    return true;
}

} // namespace velmorquit
