#pragma once

#include <csignal>
#include <string>
#include <vector>

#include <sys/types.h>

namespace velmorquit {

/// A process that a test started; it is killed with this object. What it prints is collected; it
/// has nothing to read.
class Child {
public:
    explicit Child(const std::vector<std::string>& command);
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child();

    [[nodiscard]] pid_t id() const { return id_; }
    /// All that it has printed on standard output and standard error so far.
    [[nodiscard]] const std::string& output();
    [[nodiscard]] bool isRunning();
    /// The exit status, 128 + the signal for one that was killed; -1 while it runs.
    [[nodiscard]] int status();
    void send(int signal) const;

private:
    pid_t id_ = -1;
    int pipe_ = -1;
    int status_ = -1;
    std::string output_;
};

} // namespace velmorquit
