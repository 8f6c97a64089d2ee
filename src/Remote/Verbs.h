#pragma once

#include "Platform/RemoteCommands.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// All commands, in one table: what each takes, who may give it, what the user is asked about it
/// and how velmorctl offers it. A new one is added to the table, and to what carries it out.
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

/// What is said to a run, or of it: whether that makes sense depends on where the run stands.
enum class Word {
    leave,         ///< whatever stays open alone
    leaveNamed,    ///< the same, as the answer to a notice that has named it
    showNamed,     ///< what such a notice has named
    askAgain,      ///< what stays
    force,         ///< what stays to end
    endBackup,     ///< that runs
    answerFailure, ///< of a backup
    cancel,        ///< what was asked for
    confirmSchedule,
    postponeSchedule,
    quitAll,   ///< or some of them, where there is no run
    endAnyway, ///< over what stays open
    reopen,    ///< what the last run has closed
    none,      ///< nothing that a run is about
};

/// What a command comes to when a certain argument is a certain word.
struct Meaning {
    std::size_t at = 0;     ///< the argument's number
    std::string_view is{};  ///< empty for any that the meanings before don't have
    Word word = Word::none; ///< what it says to a run
    /// What programs that are shut in need the user's word for, as a key of the string table; `%@`
    /// is what it is about. Null where anybody may: look, and keep things as they are.
    const char* request = nullptr;
    /// It stops what is about to happen, which costs next to nothing and is never refused for
    /// calling too often.
    bool isAlwaysTaken = false;
};

/// What velmorctl takes behind a command's name.
enum class Words {
    none,
    name,         ///< all that follows is one name
    optionalName, ///< the same, or nothing
    names,        ///< one or more
    choice,       ///< one of the words of the meanings
    minutes,      ///< a number, or nothing
    all,          ///< one or more, which the program understands
};

/// What velmorctl takes behind that, beginning with hyphens.
enum Option : unsigned {
    json = 1,
    then = 2,
    yes = 4,
    noWait = 8,
    timeout = 16,
    moment = 32, ///< "--minutes" or "--at", one of them
};

/// What velmorctl makes of the answer.
enum class Reply {
    silent, ///< it only tells what was refused
    text,   ///< it prints what the program says
    own,    ///< something of its own
};

struct Command {
    Verb verb = Verb::help;
    std::string_view name{};    ///< on the bus; empty for what is velmorctl's alone
    std::string_view control{}; ///< as a word for velmorctl
    std::size_t fewest = 0;     ///< arguments on the bus, and how many there may be
    std::size_t most = 0;
    std::span<const Meaning> meanings{};
    Words words = Words::none;
    unsigned options = 0;
    Reply reply = Reply::silent;
    /// Whether velmorctl has the program started for it: it is not about one that runs.
    bool startsProgram = false;
    /// How it is typed and what it does, as keys of the string table.
    const char* usage = nullptr;
    const char* help = nullptr;
};

/// In the order in which they are explained.
[[nodiscard]] std::span<const Command> commands();

/// Never null.
[[nodiscard]] const Command& commandOf(Verb verb);

/// None when there is no such verb, or it doesn't take so many arguments.
[[nodiscard]] const Command* find(const RemoteCommand& command);

/// None for an unknown command.
[[nodiscard]] const Meaning* meaningOf(const RemoteCommand& command);

/// The commands of velmorctl that a person means by the word: the one that is called so, else all
/// that begin like that.
[[nodiscard]] std::vector<const Command*> controlCommands(std::string_view word);

} // namespace velmorquit::remote
