#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// A command that another process gave.
struct RemoteCommand {
    std::string verb;
    std::vector<std::string> arguments;
};

/// What comes back: a JSON text, or what went wrong.
struct RemoteAnswer {
    enum class Status {
        done,    ///< `text` is the answer, as JSON
        refused, ///< understood, but it can't be done now; `text` says why, for a person
        unknown, ///< no such command or argument; `text` says which, for a person
    };
    Status status = Status::done;
    std::string text;
};

/// The way by which other processes of the same user give commands and hear of changes.
class RemoteCommands {
public:
    virtual ~RemoteCommands() = default;

    /// Starts handing commands to `handler`, on the main loop. False when there is no way in (no
    /// bus); the program then does without.
    virtual bool serve(std::function<RemoteAnswer(const RemoteCommand&)> handler) = 0;

    /// Tells whoever listens of a change, as a JSON text. Nobody listening is no error.
    virtual void announce(std::string_view change) = 0;
};

} // namespace velmorquit
