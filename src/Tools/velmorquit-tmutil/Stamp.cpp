#include "Stamp.h"

#include "Language/LocalTime.h"

#include <chrono>

namespace velmorquit::tmutil {

std::string stampOf(WallTime date) {
    return LocalTime::at(date).toString(QStringLiteral("yyyy-MM-dd-HHmmss")).toStdString();
}

std::string pathOf(const Destination& destination, WallTime date) {
    const std::string separator = destination.path.ends_with('/') ? "" : "/";
    return destination.path + separator + stampOf(date);
}

WallTime wholeSecondFromNow() {
    return WallTime(std::chrono::ceil<std::chrono::seconds>(std::chrono::system_clock::now()));
}

} // namespace velmorquit::tmutil
