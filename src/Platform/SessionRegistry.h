#pragma once

#include "Loop/Handle.h"
#include "Platform/RunningApplication.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// A program's statement that the computer is needed.
struct Inhibitor {
    /// What it is meant to prevent. Inhibitors that only want a moment's delay aren't included.
    enum class Against {
        shutdown,   ///< switching the computer off
        sessionEnd, ///< the end of this user's session, and so switching it off as well
        sleep,      ///< sleep, or whatever happens when the computer is idle
    };

    Against against = Against::sleep;
    std::string who;
    std::string why; ///< for a person; may be empty
    /// The process that holds it; 0 where another process keeps it on its behalf.
    ProcessId process = 0;
    /// The application on whose behalf it is held; empty when unknown.
    std::string application;

    friend bool operator==(const Inhibitor&, const Inhibitor&) = default;
};

/// The state of the sessions on this computer.
struct SessionAccount {
    /// In the registry's order, without this program's own.
    std::vector<Inhibitor> inhibitors{};
    /// Users other than this one who are logged in, on a screen or a terminal; each once.
    std::vector<std::string> otherUsers{};
    /// Whether this user has a second session on a screen, whose windows can't be seen from here.
    bool hasSecondSession = false;

    friend bool operator==(const SessionAccount&, const SessionAccount&) = default;
};

/// Keeps account of the sessions and of work that must not be interrupted.
class SessionRegistry {
public:
    virtual ~SessionRegistry() = default;

    /// Calls `told` once, in a later turn: with the present account, or with none if it wasn't
    /// available within three seconds. Where nobody keeps an account, it is empty. Not called once
    /// the handle is gone.
    [[nodiscard]] virtual Handle
    read(std::function<void(const std::optional<SessionAccount>&)> told) = 0;
};

} // namespace velmorquit
