#pragma once

#include "Loop/Handle.h"
#include "Platform/RunningApplication.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// Somebody's word that the computer is needed.
struct Inhibitor {
    /// What it is held against. One that only asks for a moment's delay is none.
    enum class Against {
        shutdown,   ///< switching the computer off
        sessionEnd, ///< the end of this user's session, and so switching it off as well
        sleep,      ///< sleep, or what comes when nobody uses the computer
    };

    Against against = Against::sleep;
    std::string who;
    std::string why; ///< for a person; may be empty
    /// Who holds it; 0 where somebody else keeps it on its behalf.
    ProcessId process = 0;
    /// The application on whose behalf it is kept; empty when that isn't said.
    std::string application;

    friend bool operator==(const Inhibitor&, const Inhibitor&) = default;
};

/// What is known of the sessions on this computer.
struct SessionAccount {
    /// In the order in which they are kept, this program's own left out.
    std::vector<Inhibitor> inhibitors{};
    /// Users other than this one who are logged in, on a screen or a terminal; each once.
    std::vector<std::string> otherUsers{};
    /// Whether this user has a second session on a screen, whose windows can't be seen from here.
    bool hasSecondSession = false;

    friend bool operator==(const SessionAccount&, const SessionAccount&) = default;
};

/// Those who keep account of sessions and of what must not be interrupted.
class SessionRegistry {
public:
    virtual ~SessionRegistry() = default;

    /// Calls `told` once, in a later turn: with the account at that time, or with none when whoever
    /// keeps it did not answer within three seconds. Where nobody keeps one, it is empty. Not
    /// called any more once the handle has gone.
    [[nodiscard]] virtual Handle
    read(std::function<void(const std::optional<SessionAccount>&)> told) = 0;
};

} // namespace velmorquit
