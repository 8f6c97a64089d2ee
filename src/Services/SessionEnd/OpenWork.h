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

/// What would be lost if the session ended now.
///
/// Every window of the display counts, whoever owns it; it has nothing to do with what the list of
/// applications shows. A program that has lost its windows while we ran is looked at until it is
/// plain that it does nothing.
class OpenWork {
public:
    /// Time for which a program is left alone that has closed its windows when it was asked to,
    /// before it is asked to quit in whatever other way it understands.
    static constexpr Duration windowlessPatience = 1s;
    /// How often it is looked what there is besides windows and the work of processes.
    static constexpr Duration mentionInterval = 2s;

    struct Found {
        /// All that keeps the session from ending.
        std::vector<EndObstacle> obstacles;
        /// Whether programs have closed their windows that may end yet, or begin to work.
        bool isSomebodyEnding = false;
    };

    /// Both outlive it. From here on it knows who had windows.
    OpenWork(Windows& windows, const Processes& processes);

    /// Asks those that it is time to ask, and says what is still in the way of `request`.
    Found ask(Uptime now, LoginRequest request, const SessionAccount& account);

    /// What nobody can look into, so that the user is told of it: programs that went to the tray by
    /// themselves, commands without a window. As old as the last `lookForMentions`, which takes a
    /// while.
    [[nodiscard]] const std::vector<EndObstacle>& mentions() const { return mentions_; }
    [[nodiscard]] bool areMentionsDue(Uptime now) const {
        return !mentionedAt_ || now - *mentionedAt_ >= mentionInterval;
    }
    void lookForMentions(Uptime now);

    /// Has those with windows asked once more, save those that wait for the user's answer.
    void askAnew();

    /// Forgets who was asked, and what was seen of work.
    void forget();

private:
    struct Program {
        WindowOwner owner;
        std::uint64_t start = 0;
        /// Those on the display at the last look.
        std::vector<OpenWindow> windows{};
        bool wasAsked = false;
        /// Of a program without a known process, which windows were.
        std::set<std::uint64_t> askedWindows{};
        /// It was not asked, for what runs in it.
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
    /// All that had windows since they were first seen and still run.
    std::map<ProcessId, Program> programs_;
    /// Those of which nobody knows the process, one for each name.
    std::vector<Program> strangers_;
    std::vector<EndObstacle> mentions_;
    std::optional<Uptime> mentionedAt_;
    Handle watching_;
};

} // namespace velmorquit
