#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace velmorquit {

/// A running program that was started here; it lives on when this object is destroyed. Its output
/// is read continuously, so it never has to wait for a reader.
class ChildProcess {
public:
    virtual ~ChildProcess() = default;

    [[nodiscard]] virtual bool isRunning() const = 0;
    /// The exit status; 128 and the signal's number for one that a signal ended, 0 while it runs.
    [[nodiscard]] virtual int status() const = 0;
    /// The last 64 KiB that it has written to standard error so far.
    [[nodiscard]] virtual std::string errorOutput() const = 0;
};

/// Programs that are run as children of this one.
class ChildProcesses {
public:
    virtual ~ChildProcesses() = default;

    struct Result {
        int status = -1; ///< as in `ChildProcess`; -1 when it could not be started
        /// All that it wrote to standard output; none when it could not be started, or when that
        /// was more than 16 MiB.
        std::optional<std::string> output;
    };

    /// Runs a program to its end and discards its standard error. Blocks: never on the main thread.
    [[nodiscard]] virtual Result run(const std::string& program,
                                     const std::vector<std::string>& arguments) = 0;

    /// Starts a program, from the main thread and without waiting. A text says why it failed.
    [[nodiscard]] virtual std::variant<std::shared_ptr<ChildProcess>, std::string>
    launch(const std::string& program, const std::vector<std::string>& arguments) = 0;
};

} // namespace velmorquit
