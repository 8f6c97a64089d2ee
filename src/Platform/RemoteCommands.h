#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// Whoever gave a command.
struct RemoteCaller {
    /// Whether it is shut in: it may not do by itself whatever the user may.
    bool isConfined = false;
    /// What it goes by, for a person: letters, digits and a few signs. Empty when nobody knows.
    std::string name{};
};

/// A command that another process gave.
struct RemoteCommand {
    std::string verb;
    std::vector<std::string> arguments;
    RemoteCaller caller{};
};

/// What comes back: a JSON text, or what went wrong.
struct RemoteAnswer {
    enum class Status {
        done,    ///< `text` is the answer, as JSON
        refused, ///< understood, but it can't be done now; `text` says why, for a person
        unknown, ///< no such command or argument; `text` says which, for a person
        asking,  ///< nothing is done until the user agrees; `text` says so, for a person
    };
    Status status = Status::done;
    std::string text;
};

/// The way by which other processes of the same user give commands and hear of changes.
class RemoteCommands {
public:
    virtual ~RemoteCommands() = default;

    /// What takes the commands.
    struct Handler {
        std::function<RemoteAnswer(const RemoteCommand&)> answer;
        /// Whether it matters whose command it is: `answer` gets the others without a caller.
        std::function<bool(const RemoteCommand&)> mattersWhose;
    };

    /// Starts handing commands over, on the main loop. False when there is no way in (no bus); the
    /// program then does without.
    virtual bool serve(Handler handler) = 0;

    /// Tells whoever listens of a change, as a JSON text. Nobody listening is no error.
    virtual void announce(std::string_view change) = 0;
};

} // namespace velmorquit
