#include "ForegroundJob.h"

#include <csignal>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {

namespace {

struct Place {
    char state = '?';
    pid_t parent = 0, group = 0, session = 0;
    int terminal = 0;
    pid_t foreground = 0; ///< the terminal's foreground process group
};

std::optional<Place> placeOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string line;
    std::getline(file, line, '\0');
    // The name before it may contain anything, but is enclosed in parentheses.
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    Place place;
    if (fields >> place.state >> place.parent >> place.group >> place.session >> place.terminal >>
        place.foreground)
        return place;
    return std::nullopt;
}

/// A command in a pipeline, in a script or in place of a shell can't leave alone.
bool isWaitedFor(const Place& own) {
    const auto shell = placeOf(own.parent);
    return shell && shell->session == own.session && shell->group != own.group &&
           own.terminal != 0 && own.foreground == own.group && own.group == ::getpid() &&
           own.session != own.group;
}

/// `status` is one of `waitpid`.
[[noreturn]] void endAs(int status) {
    if (!WIFSIGNALED(status))
        ::_exit(WEXITSTATUS(status));
    sigset_t all;
    ::sigfillset(&all);
    std::signal(WTERMSIG(status), SIG_DFL);
    ::sigprocmask(SIG_UNBLOCK, &all, nullptr);
    std::raise(WTERMSIG(status));
    ::_exit(128 + WTERMSIG(status));
}

/// Ends as the worker does, or as soon as it announces that it leaves. It then ends as if by
/// Ctrl+C, since commands typed after it on the same line ("; poweroff") were to wait for the run.
[[noreturn]] void standInFor(pid_t worker, const sigset_t& heard) {
    for (;;) {
        siginfo_t said{};
        const int signal = ::sigwaitinfo(&heard, &said);
        if (signal == SIGUSR1 && said.si_pid == worker)
            endAs(SIGINT);
        // Ctrl+C reaches the whole group, but a signal sent by a process only this one.
        if ((signal == SIGINT || signal == SIGTERM) && said.si_code <= 0)
            ::kill(worker, signal);
        int status = 0;
        if (::waitpid(worker, &status, WNOHANG) == worker)
            endAs(status);
    }
}

} // namespace

ForegroundJob ForegroundJob::begin() {
    const auto own = placeOf(::getpid());
    if (!own || !isWaitedFor(*own))
        return {};
    ForegroundJob job;
    job.standIn_ = ::getpid();
    for (auto next = own; next && next->parent > 0; next = placeOf(next->parent))
        job.ancestors_.push_back(next->parent);
    sigset_t heard;
    sigset_t before;
    ::sigemptyset(&heard);
    for (const int signal : {SIGCHLD, SIGUSR1, SIGINT, SIGTERM})
        ::sigaddset(&heard, signal);
    // Ignored signals would never be delivered.
    for (const int signal : {SIGCHLD, SIGUSR1})
        std::signal(signal, SIG_DFL);
    ::sigprocmask(SIG_BLOCK, &heard, &before);
    const pid_t worker = ::fork();
    if (worker > 0)
        standInFor(worker, heard);
    if (worker == 0)
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    return worker == 0 ? job : ForegroundJob();
}

bool ForegroundJob::isInFront() const {
    const auto own = standIn_ > 0 ? placeOf(::getpid()) : std::nullopt;
    return own && own->foreground == standIn_;
}

void ForegroundJob::leave() {
    if (standIn_ == 0)
        return;
    ::prctl(PR_SET_PDEATHSIG, 0);
    ::setsid();
    ::kill(standIn_, SIGUSR1);
    standIn_ = 0;
}

} // namespace velmorquit
