#include "Restic.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

#include <csignal>
#include <utility>

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace velmorquit::tmutil {

namespace {

constexpr std::size_t mostErrors = 65536;
/// How long it may take to clean up, in milliseconds.
constexpr int patience = 30000;

/// The environment without variables that would give restic another repository or password.
std::vector<std::string> environment() {
    std::vector<std::string> variables{"RESTIC_PROGRESS_FPS=2"};
    for (char** variable = environ; *variable; ++variable) {
        if (!std::string_view(*variable).starts_with("RESTIC_"))
            variables.emplace_back(*variable);
    }
    return variables;
}

/// Pointers to the texts, for exec.
std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (std::string& text : texts)
        list.push_back(text.data());
    list.push_back(nullptr);
    return list;
}

/// Turns a new process into restic. Not left to Qt, whose arguments can't hold every file's name.
/// Until then it shares its parent's memory, where a sanitizer would leave its marks.
__attribute__((no_sanitize("address", "undefined"))) void
become(char* const* words, char* const* variables, pid_t parent) {
    ::prctl(PR_SET_PDEATHSIG, SIGINT);
    if (::getppid() != parent)
        ::_exit(EXIT_FAILURE);
    // Its own process group: Ctrl+C is passed on to it once, by its parent.
    ::setpgid(0, 0);
    ::signal(SIGINT, SIG_DFL);
    ::signal(SIGTERM, SIG_DFL);
    // Readers of its own for its output: when its parent dies it prints a message, and a broken
    // pipe would end it before it has removed its lock.
    for (const char* output : {"/proc/self/fd/1", "/proc/self/fd/2"})
        static_cast<void>(::open(output, O_RDONLY | O_NONBLOCK));
    ::execve(words[0], words, variables);
}

/// Splits output that arrives in pieces into lines.
class Lines {
public:
    explicit Lines(const Restic::Line& listener) : listener_(listener) {}

    void add(const QByteArray& piece) {
        rest_.append(piece.constData(), static_cast<std::size_t>(piece.size()));
        std::size_t begin = 0;
        for (auto end = rest_.find('\n'); end != rest_.npos; end = rest_.find('\n', begin)) {
            listener_(std::string_view(rest_).substr(begin, end - begin));
            begin = end + 1;
        }
        rest_.erase(0, begin);
        // No message is longer: a report contains at most one file's name.
        if (rest_.size() > mostErrors)
            rest_.clear();
    }

private:
    const Restic::Line& listener_;
    std::string rest_;
};

int statusOf(const QProcess& process) {
    if (process.error() == QProcess::FailedToStart)
        return -1;
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode()
                                                        : 128 + process.exitCode();
}

} // namespace

Interruption::Interruption() {
    signals_.onAsked = [this] {
        isAsked_ = true;
        if (onAsked)
            onAsked();
    };
}

bool Interruption::isAsked() const {
    QCoreApplication::processEvents();
    return isAsked_;
}

Restic::Restic(std::string program, Interruption& interruption)
    : program_(std::move(program)), interruption_(interruption) {}

std::string Restic::installed() {
    return QFile::encodeName(QStandardPaths::findExecutable(QStringLiteral("restic")))
        .toStdString();
}

void Restic::interrupt() const {
    if (process_ > 0)
        ::kill(static_cast<pid_t>(process_), SIGINT);
}

ResticEnd Restic::run(const std::vector<std::string>& arguments, const Listeners& listeners) {
    ResticEnd end;
    if (interruption_.isAsked()) {
        end.isStopped = true;
        return end;
    }
    std::vector<std::string> words{program_};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = environment();

    QProcess process;
    process.setProgram(QFile::decodeName(program_.c_str()));
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier(
        [words = pointers(words), variables = pointers(variables), parent = ::getpid()] {
            become(words.data(), variables.data(), parent);
        });

    QEventLoop loop;
    QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
    QObject::connect(&process, &QProcess::errorOccurred, &loop, [&](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            loop.quit();
    });
    Lines output(listeners.output);
    Lines errors(listeners.errors);
    const auto readOutput = [&] {
        const QByteArray piece = process.readAllStandardOutput();
        listeners.output ? output.add(piece) : void(end.output += piece.toStdString());
    };
    const auto readErrors = [&] {
        const QByteArray piece = process.readAllStandardError();
        end.errors += piece.toStdString();
        if (end.errors.size() > mostErrors)
            end.errors.erase(0, end.errors.size() - mostErrors);
        if (listeners.errors)
            errors.add(piece);
    };
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &process, readOutput);
    QObject::connect(&process, &QProcess::readyReadStandardError, &process, readErrors);
    interruption_.onAsked = [&] {
        end.isStopped = true;
        interrupt();
        // If it hangs on a disk it leaves a lock, which the next start removes.
        QTimer::singleShot(patience, &process, &QProcess::kill);
    };
    process.start();
    process_ = process.processId();
    if (listeners.started)
        QTimer::singleShot(0, &process, listeners.started);
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    process_ = 0;
    interruption_.onAsked = {};
    readOutput();
    readErrors();
    end.status = statusOf(process);
    return end;
}

} // namespace velmorquit::tmutil
