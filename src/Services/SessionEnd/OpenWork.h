#pragma once

#include "Platform/LoginWindow.h"
#include "Platform/SessionRegistry.h"
#include "Platform/Windows.h"
#include "Services/SessionEnd/WorkMeter.h"

#include <map>
#include <optional>
#include <set>
#include <vector>

namespace velmorquit {

/// Everything that would be lost if the session ended now.
///
/// Every window of the display counts, no matter which program owns it; the list of applications
/// plays no part. A program that has lost its windows while we ran is watched until it is clear
/// that it is doing nothing.
class OpenWork {
public:
    /// How long a program that closed its windows on request is left alone before it is asked to
    /// quit in whatever other way it understands.
    static constexpr Duration windowlessPatience = 1s;
    /// How often to look for more than windows and working processes.
    static constexpr Duration mentionInterval = 2s;

    struct Found {
        /// Everything that keeps the session from ending.
        std::vector<EndObstacle> obstacles;
        /// Whether programs without windows may still end, or begin to work.
        bool isSomebodyEnding = false;
    };

    /// Both references must outlive it. From now on it keeps track of who had windows.
    OpenWork(Windows& windows, const Processes& processes);

    /// Asks the programs whose time has come; returns what still stands in the way of `request`.
    Found ask(Uptime now, LoginRequest request, const SessionAccount& account);

    /// Things nobody can look into, named for the user's information: programs that went to the
    /// tray by themselves, commands without a window. As of the last `lookForMentions`, which takes
    /// a while.
    [[nodiscard]] const std::vector<EndObstacle>& mentions() const { return mentions_; }
    [[nodiscard]] bool areMentionsDue(Uptime now) const {
        return !mentionedAt_ || now - *mentionedAt_ >= mentionInterval;
    }
    void lookForMentions(Uptime now);

    /// Asks the owners of windows once more, except those waiting for the user's answer.
    void askAnew();

    /// Forgets who was asked, and all observations of work.
    void forget();

private:
    struct Program {
        WindowOwner owner;
        std::uint64_t start = 0;
        /// Those seen on the display at the last look.
        std::vector<OpenWindow> windows{};
        bool wasAsked = false;
        /// The windows that were asked, where the program's process isn't known.
        std::set<std::uint64_t> askedWindows{};
        /// It was not asked, because something that runs in it would be lost.
        bool couldNotBeAsked = false;
        bool wasAskedWithoutWindows = false;
        std::optional<Uptime> windowlessSince{};
        WorkMeter meter{};
    };

    void note();
    void noteWindow(const OpenWindow& window);
    [[nodiscard]] bool isSame(ProcessId id, const Program& program) const;
    void askAll(Uptime now);
    void askWindows(Program& program);
    void askStrangers();
    void askWindowless(ProcessId id, Program& program, Uptime now);
    void measure(Uptime now);
    static EndObstacle obstacleOf(const Program& program);
    void addWindowless(Found& found, Uptime now, const SessionAccount& account) const;

    Windows& windows_;
    const Processes& processes_;
    /// All running programs that had windows at any time since the start.
    std::map<ProcessId, Program> programs_;
    /// Windows' owners whose process isn't known, one for each name.
    std::vector<Program> strangers_;
    std::vector<EndObstacle> mentions_;
    std::optional<Uptime> mentionedAt_;
    Handle watching_;
};

} // namespace velmorquit
