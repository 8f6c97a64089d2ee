#include "Linux/Proc/ProcessStat.h"

#include "Linux/Proc/ProcText.h"

#include <algorithm>
#include <charconv>

namespace velmorquit {

namespace {

template <class Number> bool parseNumber(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size();
}

std::string_view nextWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \n"), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(" \n"));
    text.remove_prefix(word.size());
    return word;
}

} // namespace

// The name is in parentheses and may itself contain parentheses, blanks and newlines: only the
// last closing one ends it.
std::optional<ProcessStat> parseProcessStat(std::string_view line) {
    const std::size_t open = line.find(" (");
    const std::size_t close = line.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open + 2)
        return std::nullopt;
    ProcessStat stat;
    stat.command = line.substr(open + 2, close - open - 2);
    std::string_view rest = line.substr(close + 1);
    const std::string_view state = nextWord(rest);
    stat.state = state.empty() ? '?' : state.front();
    bool good =
        parseNumber(line.substr(0, open), stat.id) && parseNumber(nextWord(rest), stat.parent) &&
        parseNumber(nextWord(rest), stat.group) && parseNumber(nextWord(rest), stat.session) &&
        parseNumber(nextWord(rest), stat.terminal) && parseNumber(nextWord(rest), stat.foreground);
    // Fields 9 to 13 are flags and faults, 18 and 19 priorities, and 21 is unused (proc(5)).
    const auto skip = [&rest](int fields) {
        for (; fields > 0; --fields)
            nextWord(rest);
    };
    skip(5);
    for (int field = 14; field <= 17; ++field) {
        std::uint64_t ticks = 0;
        good = good && parseNumber(nextWord(rest), ticks);
        stat.processorTime += ticks;
    }
    skip(2);
    int threads = 0;
    good = good && parseNumber(nextWord(rest), threads);
    skip(1);
    good = good && parseNumber(nextWord(rest), stat.startTime);
    // A process whose first thread has ended still runs while it has other threads.
    stat.hasEnded = (stat.state == 'Z' || stat.state == 'X') && threads <= 1;
    return good ? std::optional(std::move(stat)) : std::nullopt;
}

std::optional<ProcessStat> readProcessStat(ProcessId id) {
    return parseProcessStat(ProcDirectory().read(id, "stat"));
}

std::vector<ProcessStat> readProcessTable(const ProcDirectory& proc) {
    std::vector<ProcessStat> table;
    std::string line;
    for (const ProcessId id : proc.processes()) {
        proc.read(id, "stat", line);
        if (auto stat = parseProcessStat(line))
            table.push_back(std::move(*stat));
    }
    return table;
}

// A running program whose file was updated is still the same program.
std::string executableName(ProcessId id, const ProcDirectory& proc) {
    constexpr std::string_view replaced = " (deleted)";
    std::string path = proc.link(id, "exe");
    if (path.ends_with(replaced))
        path.resize(path.size() - replaced.size());
    return path.substr(path.rfind('/') + 1);
}

std::vector<std::string> processArguments(ProcessId id, const ProcDirectory& proc) {
    return ProcText::splitAtNul(proc.read(id, "cmdline"));
}

bool ignoresHangup(ProcessId id, const ProcDirectory& proc) {
    return ProcText::ignoresHangup(proc.read(id, "status"));
}

std::optional<std::string> processEnvironment(ProcessId id, std::string_view name) {
    for (const std::string& entry : ProcText::splitAtNul(ProcDirectory().read(id, "environ"))) {
        if (entry.size() > name.size() && entry.starts_with(name) && entry[name.size()] == '=')
            return entry.substr(name.size() + 1);
    }
    return std::nullopt;
}

} // namespace velmorquit
