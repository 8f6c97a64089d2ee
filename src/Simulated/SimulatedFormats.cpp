#include "Simulated/SimulatedFormats.h"

namespace velmorquit {

namespace {

std::string twoDigits(int number) { return (number < 10 ? "0" : "") + std::to_string(number); }

} // namespace

std::string SimulatedFormats::shortTime(WallTime date) const {
    const ClockTime time = clockTime(date);
    return twoDigits(time.hour) + ':' + twoDigits(time.minute);
}

std::string SimulatedFormats::relativeDate(WallTime date, WallTime now) const {
    using namespace std::chrono;
    const auto gone = floor<seconds>(floor<milliseconds>(now) - floor<milliseconds>(date));
    return std::to_string(gone.count()) + " s fa";
}

std::string SimulatedFormats::bytes(std::uint64_t count) const {
    return std::to_string(count >> 20) + " MB";
}

std::string SimulatedFormats::lowerCase(const std::string& text) const {
    std::string lowered = text;
    for (char& letter : lowered) {
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    }
    return lowered;
}

ClockTime SimulatedFormats::clockTime(WallTime date) const {
    const auto sinceMidnight = date - std::chrono::floor<std::chrono::days>(date);
    const auto minutes = std::chrono::floor<std::chrono::minutes>(sinceMidnight).count();
    return {static_cast<int>(minutes / 60), static_cast<int>(minutes % 60)};
}

WallTime SimulatedFormats::nextOccurrence(ClockTime time, WallTime now) const {
    const WallTime found = today(time, now);
    return found > now ? found : found + 24h;
}

WallTime SimulatedFormats::today(ClockTime time, WallTime now) const {
    return WallTime(std::chrono::floor<std::chrono::days>(now)) + std::chrono::hours(time.hour) +
           std::chrono::minutes(time.minute);
}

} // namespace velmorquit
