#include "Linux/Proc/LinuxChildProcesses.h"

#include "Linux/Files/Descriptor.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {

namespace {

struct Pipe {
    Descriptor reading;
    std::optional<Descriptor> writing;
};

Pipe makePipe() {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {Descriptor(-1), Descriptor(-1)};
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

/// Starts it with these for its standard output and error; -1 discards either. Returns the process
/// id, or a negative error number.
pid_t spawn(const std::string& program, const std::vector<std::string>& arguments, int output,
            int error) {
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);

    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    const std::array<std::pair<int, int>, 2> ends{
        {{output, STDOUT_FILENO}, {error, STDERR_FILENO}}};
    for (const auto& [end, standard] : ends) {
        if (end >= 0)
            ::posix_spawn_file_actions_adddup2(&files, end, standard);
        else
            ::posix_spawn_file_actions_addopen(&files, standard, "/dev/null", O_WRONLY, 0);
    }
    // Its own process group: Ctrl+C in the terminal of this program is not meant for it.
    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    pid_t process = -1;
    const int failure =
        ::posix_spawn(&process, program.c_str(), &files, &attributes, words.data(), environ);
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
    return failure == 0 ? process : -failure;
}

int exitStatus(int status) {
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

/// More than any tool writes; longer output isn't read at all.
constexpr std::size_t mostOutput = 16 << 20;

/// Reads from a pipe and keeps the last part.
class Drain {
public:
    explicit Drain(Descriptor reading) : reading_(std::move(reading)) {
        if (!reading_)
            return;
        ::fcntl(reading_.get(), F_SETFL, O_NONBLOCK);
        notifier_ = std::make_unique<QSocketNotifier>(reading_.get(), QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                         [this] { read(); });
    }

    const std::string& text() {
        read();
        return text_;
    }

private:
    void read() {
        constexpr std::size_t most = 65536;
        // The usual capacity of a pipe. A process that writes without end is read again in a later
        // turn.
        constexpr int turns = (1 << 20) / most;
        std::array<char, most> buffer;
        ssize_t count = 0;
        for (int turn = 0; turn < turns; ++turn) {
            count = ::read(reading_.get(), buffer.data(), buffer.size());
            if (count <= 0)
                break;
            text_.append(buffer.data(), static_cast<std::size_t>(count));
            if (text_.size() > most)
                text_.erase(0, text_.size() - most);
        }
        if (count == 0 && notifier_)
            notifier_->setEnabled(false);
    }

    Descriptor reading_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::string text_;
};

class LinuxChildProcess final : public ChildProcess {
public:
    LinuxChildProcess(pid_t id, Descriptor output, Descriptor error)
        : id_(id), output_(std::move(output)), error_(std::move(error)) {}

    [[nodiscard]] bool isRunning() const override {
        int status = 0;
        if (!status_ && ::waitpid(id_, &status, WNOHANG) == id_)
            status_ = exitStatus(status);
        return !status_;
    }
    [[nodiscard]] int status() const override { return isRunning() ? 0 : *status_; }
    [[nodiscard]] std::string errorOutput() const override { return error_.text(); }

private:
    pid_t id_;
    mutable std::optional<int> status_;
    Drain output_;
    mutable Drain error_;
};

} // namespace

ChildProcesses::Result LinuxChildProcesses::run(const std::string& program,
                                                const std::vector<std::string>& arguments) {
    Pipe output = makePipe();
    const pid_t process = spawn(program, arguments, output.writing->get(), -1);
    output.writing.reset();
    if (process < 0)
        return {};
    Result result{.status = 0, .output = std::string()};
    std::array<char, 4096> buffer;
    for (;;) {
        const ssize_t count = ::read(output.reading.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        result.output->append(buffer.data(), static_cast<std::size_t>(count));
        if (result.output->size() > mostOutput) {
            result.output.reset();
            break;
        }
    }
    // Further output has no reader.
    {
        const Descriptor closed(std::move(output.reading));
    }
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    result.status = exitStatus(status);
    return result;
}

std::variant<std::shared_ptr<ChildProcess>, std::string>
LinuxChildProcesses::launch(const std::string& program, const std::vector<std::string>& arguments) {
    Pipe output = makePipe();
    Pipe error = makePipe();
    const pid_t process = spawn(program, arguments, output.writing->get(), error.writing->get());
    if (process < 0)
        return program + ": " + std::strerror(-process);
    return std::make_shared<LinuxChildProcess>(process, std::move(output.reading),
                                               std::move(error.reading));
}

} // namespace velmorquit
