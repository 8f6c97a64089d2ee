#include "Linux/Applications/ApplicationLauncher.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {

namespace {

/// Variables that concern one process alone: how it was started, and its arrangements with the
/// service manager.
constexpr std::array<std::string_view, 13> privateVariables{
    "DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN", "GIO_LAUNCHED_DESKTOP_FILE",
    "INVOCATION_ID",      "JOURNAL_STREAM",       "GIO_LAUNCHED_DESKTOP_FILE_PID",
    "LISTEN_FDNAMES",     "LISTEN_FDS",           "LISTEN_PID",
    "NOTIFY_SOCKET",      "SYSTEMD_EXEC_PID",     "WATCHDOG_PID",
    "WATCHDOG_USEC"};

std::vector<char*> sharedEnvironment() {
    std::vector<char*> variables;
    for (char** next = environ; *next; ++next) {
        const std::string_view variable(*next);
        const std::string_view name = variable.substr(0, variable.find('='));
        if (std::ranges::find(privateVariables, name) == privateVariables.end())
            variables.push_back(*next);
    }
    variables.push_back(nullptr);
    return variables;
}

/// The process id; -1 on failure.
pid_t spawn(std::vector<std::string> command) {
    std::vector<char*> words;
    for (std::string& word : command)
        words.push_back(word.data());
    words.push_back(nullptr);
    std::vector<char*> environment = sharedEnvironment();

    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&files, stream, "/dev/null", O_WRONLY, 0);
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setflags(&attributes,
                               POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    sigset_t signals;
    ::sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&attributes, &signals);
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes, &signals);
    pid_t process = -1;
    const int failure = ::posix_spawn(&process, words.front(), &files, &attributes, words.data(),
                                      environment.data());
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
    return failure == 0 ? process : -1;
}

} // namespace

void ApplicationLauncher::launch(const std::string& path) {
    std::vector<std::string> command = starter_;
    command.push_back(path);
    const pid_t starter = spawn(std::move(command));
    if (starter < 0) {
        complain(path);
        return;
    }
    auto process = ProcessHandle::open(starter, [this, starter, path] { takeNote(starter, path); });
    if (process)
        running_[starter] = std::move(process);
}

void ApplicationLauncher::takeNote(ProcessId starter, const std::string& path) {
    running_.erase(starter);
    int status = 0;
    while (::waitpid(starter, &status, 0) < 0 && errno == EINTR) {
    }
    if (status != 0)
        complain(path);
}

void ApplicationLauncher::complain(const std::string& path) {
    log_.write("Velmor Quit: non riesco a riaprire " + path);
}

} // namespace velmorquit
