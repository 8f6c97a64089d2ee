#pragma once

#include "Platform/RunningApplication.h"

#include <cstdint>
#include <map>
#include <string>

namespace velmorquit {

/// Applications that are being started in the background. Window managers give the keyboard to
/// every new window; this class remembers from which window they took it.
class BackgroundStarts {
public:
    /// How long an application may take to show its first window.
    static constexpr Duration patience = 60s;
    /// For how long afterwards its windows become active because of the window manager, and not
    /// because of the user.
    static constexpr Duration settling = 1s;

    /// The application of that desktop entry is being started while `focusedWindow` has the
    /// keyboard; if that is 0, windows of the application may keep the keyboard.
    void expect(const std::string& path, std::uint64_t focusedWindow, Uptime now);

    /// An application of that desktop entry has shown its first window.
    void noteAppearance(const std::string& path, ProcessId process, Uptime now);

    /// Notes which window has the keyboard now, and its process. Returns the window to give it back
    /// to; 0 when nothing has to be done.
    [[nodiscard]] std::uint64_t windowToRestore(std::uint64_t focusedWindow, ProcessId owner,
                                                Uptime now);

private:
    /// How long to wait for each of them.
    std::map<std::string, Uptime> expected_;
    /// How long to keep the keyboard from their windows.
    std::map<ProcessId, Uptime> appeared_;
    /// The last window with the keyboard that isn't one of theirs.
    std::uint64_t formerWindow_ = 0;
};

} // namespace velmorquit
