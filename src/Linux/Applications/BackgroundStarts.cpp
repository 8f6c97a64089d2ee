#include "Linux/Applications/BackgroundStarts.h"

namespace velmorquit {

void BackgroundStarts::expect(const std::string& path, std::uint64_t focusedWindow, Uptime now) {
    if (expected_.empty() && appeared_.empty())
        formerWindow_ = focusedWindow;
    expected_[path] = now + patience;
}

void BackgroundStarts::noteAppearance(const std::string& path, ProcessId process, Uptime now) {
    if (expected_.erase(path) > 0)
        appeared_[process] = now + settling;
}

std::uint64_t BackgroundStarts::windowToRestore(std::uint64_t focusedWindow, ProcessId owner,
                                                Uptime now) {
    const auto isOver = [now](const auto& start) { return now >= start.second; };
    std::erase_if(expected_, isOver);
    std::erase_if(appeared_, isOver);
    if (appeared_.contains(owner))
        return formerWindow_;
    // Between two windows, none may have the keyboard.
    if (focusedWindow != 0)
        formerWindow_ = focusedWindow;
    return 0;
}

} // namespace velmorquit
