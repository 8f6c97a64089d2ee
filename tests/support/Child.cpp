#include "support/Child.h"

#include <array>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {

Child::Child(const std::vector<std::string>& command) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    const int error =
        ::posix_spawnp(&id_, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    pipe_ = ends[0];
    ::fcntl(pipe_, F_SETFL, O_NONBLOCK);
    if (error != 0)
        throw std::runtime_error("cannot start " + command.front());
}

Child::~Child() {
    if (isRunning()) {
        ::kill(id_, SIGKILL);
        ::waitpid(id_, nullptr, 0);
    }
    ::close(pipe_);
}

const std::string& Child::output() {
    std::array<char, 4096> buffer;
    for (ssize_t count; (count = ::read(pipe_, buffer.data(), buffer.size())) > 0;)
        output_.append(buffer.data(), static_cast<std::size_t>(count));
    return output_;
}

bool Child::isRunning() { return status() == -1; }

int Child::status() {
    int raw = 0;
    if (status_ == -1 && ::waitpid(id_, &raw, WNOHANG) == id_)
        status_ = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
    return status_;
}

void Child::send(int signal) const { ::kill(id_, signal); }

} // namespace velmorquit
