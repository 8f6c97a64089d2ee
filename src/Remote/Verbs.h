#pragma once

#include "Platform/RemoteCommands.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// All commands in one table: arguments, who may give them, what the user is asked first, and how
/// velmorctl offers them. A new one is added to the table, and where commands are carried out.
namespace velmorquit::remote {

enum class Verb {
    help,
    version,
    status,
    watch,
    quitAll,
    quit,
    askAgain,
    force,
    leave,
    exclude,
    include,
    backup,
    eject,
    schedule,
    postpone,
    confirm,
    cancel,
    anyway,
    memory,
    actions,
    action,
    reopen,
    forget,
    show,
};

/// Anything said to or about a run; whether it makes sense depends on the run's state.
enum class Word {
    leave,         ///< leave open what stays, and end the run
    leaveNamed,    ///< the same, in reply to a notice that named what stays
    showNamed,     ///< bring to the front what such a notice named
    askAgain,      ///< ask what stays to quit once more
    force,         ///< force what stays to end
    endBackup,     ///< stop a running backup
    answerFailure, ///< say what happens after a failed backup
    cancel,        ///< drop the schedule and the power action
    confirmSchedule,
    postponeSchedule,
    quitAll,   ///< or ask only some, while there is no run
    endAnyway, ///< end the session despite what stays open
    reopen,    ///< open again what the last run closed
    none,      ///< not about a run
};

/// What a command means if a certain argument is a certain word.
struct Meaning {
    std::size_t at = 0;     ///< the argument's index
    std::string_view is{};  ///< the word; empty for any that earlier meanings don't match
    Word word = Word::none; ///< what it says to a run
    /// The request for which sandboxed programs need the user's consent, as a key of the string
    /// table with `%@` for its subject. Null where anybody may: look, and keep things as they are.
    const char* request = nullptr;
    /// It stops something that is about to happen; that costs next to nothing, and so is never
    /// refused because of too many calls.
    bool isAlwaysTaken = false;
};

/// The words that velmorctl takes after a command's name.
enum class Words {
    none,
    name,         ///< all of them are one name
    optionalName, ///< the same, or nothing
    names,        ///< one or more
    choice,       ///< one of the words of the meanings
    minutes,      ///< a number, or nothing
    all,          ///< one or more, interpreted by the program
};

/// The options that velmorctl takes after that.
enum Option : unsigned {
    json = 1,
    then = 2,
    yes = 4,
    noWait = 8,
    timeout = 16,
    moment = 32, ///< "--minutes" or "--at", one of them
};

/// How velmorctl uses the answer.
enum class Reply {
    silent, ///< it reports only a refusal
    text,   ///< it prints the program's text
    own,    ///< it has its own output
};

struct Command {
    Verb verb = Verb::help;
    std::string_view name{};    ///< on the bus; empty for velmorctl's own commands
    std::string_view control{}; ///< as a word for velmorctl
    std::size_t fewest = 0;     ///< lower and upper limit of the number of arguments on the bus
    std::size_t most = 0;
    std::span<const Meaning> meanings{};
    Words words = Words::none;
    unsigned options = 0;
    Reply reply = Reply::silent;
    /// Whether velmorctl starts the program if need be: the command isn't about a running one.
    bool startsProgram = false;
    /// How it is typed and what it does, as keys of the string table.
    const char* usage = nullptr;
    const char* help = nullptr;
};

/// In the order of the help text.
[[nodiscard]] std::span<const Command> commands();

/// Never null.
[[nodiscard]] const Command& commandOf(Verb verb);

/// None when there is no such verb, or when the number of arguments is wrong.
[[nodiscard]] const Command* find(const RemoteCommand& command);

/// None for an unknown command.
[[nodiscard]] const Meaning* meaningOf(const RemoteCommand& command);

/// The commands of velmorctl that the user may mean by the word: the one with that name, or else
/// all whose names begin with it.
[[nodiscard]] std::vector<const Command*> controlCommands(std::string_view word);

} // namespace velmorquit::remote
