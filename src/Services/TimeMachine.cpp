#include "Services/TimeMachine.h"

#include "Codecs/PropertyList.h"
#include "Platform/Dates.h"
#include "Texts/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ctime>
#include <regex>
#include <string_view>

namespace velmorquit::TimeMachine {

namespace {

template <class Type>
const Type* entry(const Value::Dictionary& dictionary, const std::string& key) {
    const auto found = dictionary.find(key);
    return found == dictionary.end() ? nullptr : found->second.as<Type>();
}

/// The whole text as a plain decimal number.
std::optional<double> numberIn(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    // The parser would also accept words such as "inf".
    if (text.empty() || text.find_first_not_of("0123456789.-+eE") != std::string_view::npos)
        return std::nullopt;
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = end == text.data() + text.size();
    return error == std::errc{} && isWhole ? std::optional(number) : std::nullopt;
}

std::optional<double> numberAt(const Value::Dictionary& dictionary, const std::string& key) {
    if (const auto* real = entry<double>(dictionary, key))
        return std::isnan(*real) ? std::nullopt : std::optional(*real);
    if (const auto* integer = entry<std::int64_t>(dictionary, key))
        return static_cast<double>(*integer);
    if (const auto* text = entry<std::string>(dictionary, key))
        return numberIn(*text);
    return std::nullopt;
}

/// Some values are in per cent.
std::optional<double> fractionOf(double progress) {
    if (progress < 0)
        return std::nullopt;
    return std::min(progress > 1 ? progress / 100 : progress, 1.0);
}

/// The instant at which the user's clock shows these figures, the earlier one of two; none when
/// there is no such day or time.
std::optional<WallTime> localTime(const std::tm& figures) {
    std::optional<std::time_t> earliest;
    // Where the clock is set back, the same figures occur with and without daylight saving.
    for (const int daylightSaving : {1, 0}) {
        std::tm shown = figures;
        shown.tm_isdst = daylightSaving;
        const std::time_t instant = std::mktime(&shown);
        const bool isSame = shown.tm_mday == figures.tm_mday && shown.tm_mon == figures.tm_mon &&
                            shown.tm_hour == figures.tm_hour && shown.tm_min == figures.tm_min &&
                            shown.tm_sec == figures.tm_sec;
        if (isSame && (!earliest || instant < *earliest))
            earliest = instant;
    }
    if (!earliest)
        return std::nullopt;
    return dateAt(std::chrono::sys_seconds(std::chrono::seconds(*earliest)));
}

/// "2026-03-02-081500". Only the first such stamp counts, even if it is no valid date.
std::optional<WallTime> dateIn(const std::string& output) {
    static const std::regex stamp(R"((\d{4})-(\d{2})-(\d{2})-(\d{2})(\d{2})(\d{2}))");
    std::smatch found;
    if (!std::regex_search(output, found, stamp))
        return std::nullopt;
    const auto figure = [&](std::size_t group) { return std::stoi(found[group].str()); };
    std::tm figures{};
    figures.tm_year = figure(1) - 1900;
    figures.tm_mon = figure(2) - 1;
    figures.tm_mday = figure(3);
    figures.tm_hour = figure(4);
    figures.tm_min = figure(5);
    figures.tm_sec = figure(6);
    return localTime(figures);
}

} // namespace

Info info(const Files& files, const BackupTool& tool) {
    const auto content = tool.destinations.empty() ? std::nullopt : files.read(tool.destinations);
    const auto list = content ? PropertyList::decode(*content) : std::nullopt;
    const auto* root = list ? list->as<Value::Dictionary>() : nullptr;
    const auto* destinations = root ? entry<Value::Array>(*root, "Destinations") : nullptr;
    if (!destinations || destinations->empty())
        return {};
    Info info{.isConfigured = true, .lastBackup = std::nullopt};
    for (const Value& destination : *destinations) {
        const auto* fields = destination.as<Value::Dictionary>();
        if (!fields)
            return {};
        const auto* dates = entry<Value::Array>(*fields, "SnapshotDates");
        const bool areDates = dates && std::ranges::all_of(*dates, [](const Value& date) {
                                  return date.as<WallTime>() != nullptr;
                              });
        if (!areDates)
            continue;
        for (const Value& date : *dates)
            info.lastBackup = std::max(info.lastBackup, std::optional(*date.as<WallTime>()));
    }
    return info;
}

std::optional<WallTime> latestBackupDate(ChildProcesses& children, const BackupTool& tool) {
    const auto result = children.run(tool.program, {"latestbackup"});
    if (!result.output || !isUtf8(*result.output))
        return std::nullopt;
    return dateIn(*result.output);
}

Status status(ChildProcesses& children, const BackupTool& tool) {
    const auto result = children.run(tool.program, {"status", "-X"});
    const auto list = result.output ? PropertyList::decode(*result.output) : std::nullopt;
    const auto* root = list ? list->as<Value::Dictionary>() : nullptr;
    if (!root)
        return {};
    Status status;
    if (const auto* running = entry<bool>(*root, "Running"))
        status.running = *running;
    else if (const auto* number = entry<std::int64_t>(*root, "Running"))
        status.running = *number == 1;
    auto progress = numberAt(*root, "Percent");
    const auto* inner = entry<Value::Dictionary>(*root, "Progress");
    if (!progress && inner)
        progress = numberAt(*inner, "Percent");
    if (progress)
        status.fraction = fractionOf(*progress);
    return status;
}

std::variant<std::shared_ptr<ChildProcess>, std::string> startBackup(ChildProcesses& children,
                                                                     const BackupTool& tool) {
    return children.launch(tool.program, {"startbackup", "--block"});
}

void stopBackup(ChildProcesses& children, const BackupTool& tool) {
    static_cast<void>(children.run(tool.program, {"stopbackup"}));
}

std::optional<std::string> errorMessage(const ChildProcess& process) {
    const std::string written = process.errorOutput();
    if (!isUtf8(written))
        return std::nullopt;
    std::optional<std::string> message;
    constexpr const char* blanks = " \t";
    for (std::size_t begin = 0; begin < written.size();) {
        const std::size_t end = std::min(written.find('\n', begin), written.size());
        const std::string line = written.substr(begin, end - begin);
        const std::size_t first = line.find_first_not_of(blanks);
        if (first != std::string::npos)
            message = line.substr(first, line.find_last_not_of(blanks) - first + 1);
        begin = end + 1;
    }
    return message;
}

} // namespace velmorquit::TimeMachine
