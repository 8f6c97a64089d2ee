#pragma once

#include "Loop/Published.h"
#include "Platform/RunningApplication.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmorquit {

/// The ways in which the session can end.
enum class LoginRequest { shutDown, restart, logOut };

/// Whether the user attends to what is happening.
enum class Attendance { attended, unattended };

/// The circumstances of a request.
struct EndTerms {
    Attendance attendance = Attendance::attended;
    /// The user asked for it so long ago that they may be busy with something else by now: it is
    /// announced for a minute.
    bool comesLate = false;
};

/// Something that keeps the session from ending, or that is named before it ends.
struct EndObstacle {
    enum class Kind {
        window,        ///< open, and asked to close
        unaskable,     ///< open, and there is no polite way to ask it
        question,      ///< asks something of the user
        work,          ///< has no windows any more and goes on working
        inhibitor,     ///< says that the computer is needed
        otherUser,     ///< somebody else is logged in
        secondSession, ///< this user is logged in on a second screen
        slept,         ///< the computer was asleep for long during the wait
        unseen,        ///< not all windows can be seen
        unknown,       ///< the service that keeps account of the sessions doesn't answer
        tray,          ///< lives on in the tray: only named
        job,           ///< a command that runs in no window: only named
    };

    Kind kind = Kind::window;
    std::string name{};   ///< of a program or a user; empty where there is none
    std::string detail{}; ///< its description of itself; may be empty
    ProcessId process = 0;
    std::vector<std::uint64_t> windows{};

    friend bool operator==(const EndObstacle&, const EndObstacle&) = default;
};

/// How far the end of the session has come.
struct EndState {
    enum class Stage {
        none,
        waiting,  ///< for the obstacles; if there are none, for something that is about to end
        naming,   ///< it is about to come; the obstacles are only named
        underWay, ///< the system has been told
        refused,  ///< it doesn't come because of the obstacles
        failed,   ///< the system refused, or didn't answer
    };

    Stage stage = Stage::none;
    LoginRequest request = LoginRequest::shutDown;
    std::vector<EndObstacle> obstacles{};
    /// When it comes, by running time, where that is known.
    std::optional<Uptime> at{};
    /// Whether the user may have it come over exactly these obstacles.
    bool canBeForced = false;
    /// Number that tells this list of obstacles from any other one that isn't empty.
    std::uint64_t list = 0;

    /// Whether it is still to come.
    [[nodiscard]] bool isComing() const {
        return stage == Stage::waiting || stage == Stage::naming;
    }

    friend bool operator==(const EndState&, const EndState&) = default;
};

/// How a session would end.
enum class EndOutlook {
    direct,  ///< once everything is closed
    asks,    ///< not all windows can be seen: the session's manager asks its user
    refused, ///< not all windows can be seen, and nobody could ask
};

/// Ends sessions and switches the computer off.
class LoginWindow {
public:
    explicit LoginWindow(MainLoop& loop) : state(loop) {}
    LoginWindow(const LoginWindow&) = delete;
    LoginWindow& operator=(const LoginWindow&) = delete;
    virtual ~LoginWindow() = default;

    /// Requests the end. None when the request was taken, else the reason, for the log. Returns at
    /// once: everything open is asked to close and waited for, and the request is given up if
    /// something stays; `state` tells. A waiting request is replaced by the next.
    virtual std::optional<std::string> request(LoginRequest request, const EndTerms& terms) = 0;

    /// Announces a request that will follow in a moment.
    virtual void announce(LoginRequest request) = 0;

    /// Gives up a waiting request, and forgets one that was announced or refused; false when none
    /// was waiting.
    virtual bool cancel() = 0;

    /// The user has the end come over the obstacles of that list, whatever is lost. False when
    /// that list is no longer the present one, or may not be passed over.
    virtual bool endAnyway(std::uint64_t list) = 0;

    /// What would become of a request now, as far as can be told.
    [[nodiscard]] virtual EndOutlook outlook(LoginRequest request) const = 0;

    Published<EndState, LoginWindow> state;

protected:
    void become(EndState next) { state = std::move(next); }
};

} // namespace velmorquit
