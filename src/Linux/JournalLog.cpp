#include "Linux/JournalLog.h"

#include "Texts/Shown.h"

#include <string>

#include <unistd.h>

namespace velmorquit {

// One write a line, so that lines of several programs don't mix. The reader may be a terminal that
// has gone: nothing is to be done about that.
void JournalLog::write(std::string_view line) {
    constexpr std::size_t longest = 2000;
    const std::string whole = shownText(line, longest) + '\n';
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, whole.data(), whole.size());
}

} // namespace velmorquit
