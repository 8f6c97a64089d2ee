#pragma once

#include "Linux/Program/EndSignals.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit::tmutil {

/// Remembers that the tool should end: by Ctrl+C, or a stop from elsewhere.
class Interruption {
public:
    Interruption();

    /// Also looks for new requests.
    [[nodiscard]] bool isAsked() const;

    /// Called for a request, from the event loop.
    std::function<void()> onAsked;

private:
    EndSignals signals_;
    bool isAsked_ = false;
};

/// The outcome of a call of restic.
struct ResticEnd {
    int status = -1; ///< exit status, or 128 + a signal's number; -1 when it could not be started
    std::string output;     ///< standard output, unless it was taken line by line
    std::string errors;     ///< the last 64 KiB of standard error
    bool isStopped = false; ///< the tool was asked to end

    [[nodiscard]] bool isGood() const { return status == 0 && !isStopped; }
};

/// Runs restic, and makes it end when this process does.
class Restic {
public:
    using Line = std::function<void(std::string_view)>;
    struct Listeners {
        Line output{}; ///< given each line of standard output
        Line errors{}; ///< given each line of standard error
        std::function<void()> started{};
    };

    /// `program` is its path, empty if it isn't installed; `interruption` must outlive this.
    Restic(std::string program, Interruption& interruption);

    /// The path of the installed restic, empty without one.
    [[nodiscard]] static std::string installed();

    [[nodiscard]] bool isInstalled() const { return !program_.empty(); }
    [[nodiscard]] bool isInterrupted() const { return interruption_.isAsked(); }

    /// Runs it to its end while the event loop runs. Arguments may be any bytes. Interruptions and
    /// `interrupt` are passed on to it, and its end is waited for, so that no lock remains.
    [[nodiscard]] ResticEnd run(const std::vector<std::string>& arguments,
                                const Listeners& listeners);

    /// Ends the running call, from one of its listeners.
    void interrupt() const;

private:
    std::string program_;
    Interruption& interruption_;
    qint64 process_ = 0;
};

} // namespace velmorquit::tmutil
