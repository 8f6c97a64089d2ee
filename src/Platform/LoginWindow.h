#pragma once

#include "Loop/Published.h"
#include "Platform/RunningApplication.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmorquit {

/// What the session can be asked for.
enum class LoginRequest { shutDown, restart, logOut };

/// Whether somebody attends what is going on.
enum class Attendance { attended, unattended };

/// What came before a request.
struct EndTerms {
    Attendance attendance = Attendance::attended;
    /// So much time has passed since the user asked for it that they may be at something else now:
    /// it is announced for a minute.
    bool comesLate = false;
};

/// Something over which the session is not ended, or that is named before it is.
struct EndObstacle {
    enum class Kind {
        window,        ///< open, and asked to close
        unaskable,     ///< open, and there is no polite way to ask it
        question,      ///< asks something of the user
        work,          ///< has no windows any more and goes on working
        inhibitor,     ///< says that the computer is needed
        otherUser,     ///< somebody else is logged in
        secondSession, ///< this user is logged in on a second screen
        slept,         ///< the computer was asleep for long while it was waited for
        unseen,        ///< not all windows can be seen
        unknown,       ///< whoever keeps account of the sessions doesn't answer
        tray,          ///< lives on in the tray: named, no more
        job,           ///< a command that runs in no window: named, no more
    };

    Kind kind = Kind::window;
    std::string name{};   ///< of a program or a user; empty where there is none
    std::string detail{}; ///< what it says of itself; may be empty
    ProcessId process = 0;
    std::vector<std::uint64_t> windows{};

    friend bool operator==(const EndObstacle&, const EndObstacle&) = default;
};

/// How far the end of the session has come.
struct EndState {
    enum class Stage {
        none,
        waiting,  ///< for the obstacles; without any, for what is about to be gone
        naming,   ///< it follows; the obstacles are only named
        underWay, ///< the system has been told
        refused,  ///< it doesn't come, because of the obstacles
        failed,   ///< the system refused, or didn't answer
    };

    Stage stage = Stage::none;
    LoginRequest request = LoginRequest::shutDown;
    std::vector<EndObstacle> obstacles{};
    /// When it follows, by running time, where that is known.
    std::optional<Uptime> at{};
    /// Whether the user may say that it is to come over these very obstacles.
    bool canBeForced = false;
    /// Tells this list of obstacles from any other one that is not empty.
    std::uint64_t list = 0;

    /// Whether it is still to come.
    [[nodiscard]] bool isComing() const {
        return stage == Stage::waiting || stage == Stage::naming;
    }

    friend bool operator==(const EndState&, const EndState&) = default;
};

/// How a session would be ended.
enum class EndOutlook {
    direct,  ///< once everything is closed
    asks,    ///< not all windows can be seen: the session's manager asks its user
    refused, ///< not all windows can be seen, and nobody could ask
};

/// Whoever ends sessions and switches the computer off.
class LoginWindow {
public:
    explicit LoginWindow(MainLoop& loop) : state(loop) {}
    LoginWindow(const LoginWindow&) = delete;
    LoginWindow& operator=(const LoginWindow&) = delete;
    virtual ~LoginWindow() = default;

    /// Asks for it. None when the request was taken, else why not, for the log. Returns at once:
    /// what is still open is asked to close first and waited for, and when something stays the
    /// request is given up; `state` tells. A request that is waiting is replaced by the next.
    virtual std::optional<std::string> request(LoginRequest request, const EndTerms& terms) = 0;

    /// Says that it will be asked for in a moment.
    virtual void announce(LoginRequest request) = 0;

    /// Gives up a request that is still waiting, and forgets one that was announced or refused;
    /// false when none was waiting.
    virtual bool cancel() = 0;

    /// The user's word that the end is to come over the obstacles of that list, whatever is lost by
    /// it. False when it is not their list any more, or may not be passed over.
    virtual bool endAnyway(std::uint64_t list) = 0;

    /// What a request would come to now, as far as that can be told.
    [[nodiscard]] virtual EndOutlook outlook(LoginRequest request) const = 0;

    Published<EndState, LoginWindow> state;

protected:
    void become(EndState next) { state = std::move(next); }
};

} // namespace velmorquit
