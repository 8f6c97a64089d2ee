#pragma once

#include "Platform/RunningApplication.h"

#include <cstdint>
#include <map>
#include <string>

namespace velmorquit {

/// Applications that are being started in the background. Window managers give the keyboard to
/// whatever window is new; this knows from which window they took it.
class BackgroundStarts {
public:
    /// How long an application may take to show its first window.
    static constexpr Duration patience = 60s;
    /// For how long from then on it is the window manager that makes its windows active, and not
    /// the user.
    static constexpr Duration settling = 1s;

    /// The application of that desktop entry is being started, while `focusedWindow` has the
    /// keyboard; where none has, windows of the application may well have it.
    void expect(const std::string& path, std::uint64_t focusedWindow, Uptime now);

    /// An application of that desktop entry has shown its first window.
    void noteAppearance(const std::string& path, ProcessId process, Uptime now);

    /// Takes note of the window that has the keyboard now, and of its process. The window that is
    /// to have it again; 0 when things are as they should be.
    [[nodiscard]] std::uint64_t windowToRestore(std::uint64_t focusedWindow, ProcessId owner,
                                                Uptime now);

private:
    /// Until when each is waited for.
    std::map<std::string, Uptime> expected_;
    /// Until when their windows are kept from having the keyboard.
    std::map<ProcessId, Uptime> appeared_;
    /// The last one that had the keyboard and is none of theirs.
    std::uint64_t formerWindow_ = 0;
};

} // namespace velmorquit
