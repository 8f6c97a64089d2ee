#pragma once

#include "Linux/Program/EndSignals.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit::tmutil {

/// Remembers that somebody wants the tool to end: Ctrl+C, or a stop from elsewhere.
class Interruption {
public:
    Interruption();

    /// Also looks for what has come meanwhile.
    [[nodiscard]] bool isAsked() const;

    /// Called when somebody asks, from the event loop.
    std::function<void()> onAsked;

private:
    EndSignals signals_;
    bool isAsked_ = false;
};

/// How a call of restic ended.
struct ResticEnd {
    int status = -1;    ///< exit status, 128 and a signal's number; -1 when it could not be started
    std::string output; ///< standard output, when nobody took it line by line
    std::string errors; ///< the last 64 KiB of standard error
    bool isStopped = false; ///< somebody wanted the tool to end

    [[nodiscard]] bool isGood() const { return status == 0 && !isStopped; }
};

/// Runs restic, and has it end when this process does.
class Restic {
public:
    using Line = std::function<void(std::string_view)>;
    struct Listeners {
        Line output{}; ///< given each line of standard output
        Line errors{}; ///< given each line of standard error
        std::function<void()> started{};
    };

    /// `program` is its path, empty where it isn't installed; `interruption` outlives this.
    Restic(std::string program, Interruption& interruption);

    /// The path of the one that is installed, empty without one.
    [[nodiscard]] static std::string installed();

    [[nodiscard]] bool isInstalled() const { return !program_.empty(); }
    [[nodiscard]] bool isInterrupted() const { return interruption_.isAsked(); }

    /// Runs it to its end, while the event loop runs. Arguments are any bytes. An interruption is
    /// passed on to it and its end waited for, so that no lock stays; so it is with `interrupt`.
    [[nodiscard]] ResticEnd run(const std::vector<std::string>& arguments,
                                const Listeners& listeners);

    /// Ends the call that is under way, from one of its listeners.
    void interrupt() const;

private:
    std::string program_;
    Interruption& interruption_;
    qint64 process_ = 0;
};

} // namespace velmorquit::tmutil
