#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// The process that gave a command.
struct RemoteCaller {
    /// Whether it is sandboxed, and so may not do everything that the user may.
    bool isConfined = false;
    /// Its name for the user: letters, digits and a few signs. Empty when unknown.
    std::string name{};
};

/// A command that another process gave.
struct RemoteCommand {
    std::string verb;
    std::vector<std::string> arguments;
    RemoteCaller caller{};
};

/// The result: a JSON text, or what went wrong.
struct RemoteAnswer {
    enum class Status {
        done,    ///< `text` is the result, as JSON
        refused, ///< understood, but impossible now; `text` tells the user why
        unknown, ///< no such command or argument; `text` tells the user which
        asking,  ///< nothing happens until the user agrees; `text` says so
    };
    Status status = Status::done;
    std::string text;
};

/// The channel by which other processes of the same user give commands and hear of changes.
class RemoteCommands {
public:
    virtual ~RemoteCommands() = default;

    /// Receives the commands.
    struct Handler {
        std::function<RemoteAnswer(const RemoteCommand&)> answer;
        /// Whether the caller matters for a command; others reach `answer` without one.
        std::function<bool(const RemoteCommand&)> mattersWhose;
    };

    /// Starts delivering commands, on the main loop. False when there is no channel (no bus); the
    /// program then does without.
    virtual bool serve(Handler handler) = 0;

    /// Broadcasts a change, as a JSON text, to all listeners. Having none is no error.
    virtual void announce(std::string_view change) = 0;
};

} // namespace velmorquit
