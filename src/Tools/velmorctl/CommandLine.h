#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>
#include <string>
#include <variant>

namespace velmorquit {

/// Exit statuses of velmorctl.
enum class ExitStatus {
    success = 0,
    failure = 1,       ///< refused, or the run ended with something left open
    usage = 2,         ///< the words were not understood
    notRunning = 3,    ///< there is no program to talk to
    timedOut = 4,      ///< the wait took longer than it was to; what was waited for goes on
    stranger = 5,      ///< another program has the name of the one to talk to
    asking = 6,        ///< nothing is done until the user has agreed on the screen
    interrupted = 130, ///< by Ctrl+C; what was waited for goes on
};

/// What the user asked for on the command line.
struct CommandLine {
    enum class Command {
        help,
        version,
        status,
        watch,
        quitAll,
        askAgain,
        force,
        leave,
        exclude,
        include,
        show,
        backup,
        eject,
        cancel,
        reopen,
        forget,
        anyway,
        schedule,
        postpone,
        confirm,
        memory,
        actions,
        action
    };

    Command command = Command::help;
    QString name;                             ///< of an application
    QString word;                             ///< what is said to a backup
    QString moment;                           ///< "minutes" or "at", of a schedule
    QString time;                             ///< a number of minutes, or a time of day
    QStringList arguments;                    ///< name and parameters of a published action
    QString then = QStringLiteral("nothing"); ///< what is to follow a run
    bool isConfirmed = false;                 ///< no question is to be asked first
    bool endsWithRun = false;                 ///< what follows a run isn't waited for
    /// How long a run is waited for; none for as long as it takes.
    std::optional<std::chrono::milliseconds> timeout;
    bool wantsJson = false;
};

/// Reads the arguments, the program's name left out; a text says what is wrong with them.
[[nodiscard]] std::variant<CommandLine, std::string> parseCommandLine(const QStringList& arguments);

/// How velmorctl is used.
[[nodiscard]] std::string usage();

} // namespace velmorquit
