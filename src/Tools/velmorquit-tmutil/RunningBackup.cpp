#include "RunningBackup.h"

#include "Folders.h"
#include "Linux/Files/PrivateFiles.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace velmorquit::tmutil {

namespace fs = std::filesystem;

namespace {

fs::path lockPath() { return Folders::runtime() / "backup.lock"; }

fs::path statusPath() { return Folders::runtime() / "backup.status"; }

/// The whole file, for one that writes.
struct flock wholeFile() {
    struct flock lock{};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

/// Becomes readable when the process ends.
Descriptor openProcess(pid_t process) {
    return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

bool hasEnded(const Descriptor& process, std::chrono::milliseconds patience) {
    pollfd wait{.fd = process.get(), .events = POLLIN, .revents = 0};
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
        const int count = ::poll(&wait, 1, std::max<int>(static_cast<int>(left.count()), 0));
        if (count >= 0 || errno != EINTR)
            return count > 0;
    }
}

} // namespace

// Such a lock, unlike that of flock(2), tells who has it without being taken for a moment, and no
// child inherits it. It would go with any descriptor of the file: nothing else here opens it.
std::optional<RunningBackup> RunningBackup::begin() {
    if (PrivateFiles::makeFolder(Folders::runtime()))
        return RunningBackup(Descriptor(-1));
    Descriptor file = PrivateFiles::openLock(lockPath());
    struct flock lock = wholeFile();
    if (file && ::fcntl(file.get(), F_SETLK, &lock) != 0 && (errno == EAGAIN || errno == EACCES))
        return std::nullopt;
    return RunningBackup(std::move(file));
}

RunningBackup::~RunningBackup() {
    if (lock_)
        ::unlink(statusPath().c_str());
}

void RunningBackup::publish(double fraction) {
    if (published_ && fraction <= *published_)
        return;
    published_ = std::clamp(fraction, 0.0, 1.0);
    const std::string line = std::to_string(::getpid()) + ' ' + std::to_string(*published_) + '\n';
    // Who looks meanwhile sees the figure from before.
    [[maybe_unused]] const std::error_code unwritten =
        PrivateFiles::replace(statusPath(), line, PrivateFiles::Durability::untilShutdown);
}

std::optional<pid_t> RunningBackup::process() {
    const Descriptor file(::open(lockPath().c_str(), O_RDONLY | O_CLOEXEC));
    struct flock lock = wholeFile();
    if (!file || ::fcntl(file.get(), F_GETLK, &lock) != 0 || lock.l_type == F_UNLCK)
        return std::nullopt;
    return lock.l_pid;
}

std::optional<double> RunningBackup::fraction(pid_t process) {
    std::ifstream file(statusPath());
    std::string line;
    std::getline(file, line);
    const char* end = line.data() + line.size();
    pid_t writer = 0;
    double fraction = 0;
    const auto [blank, noProcess] = std::from_chars(line.data(), end, writer);
    // One that was killed has left its figure behind.
    if (noProcess != std::errc{} || writer != process || blank == end)
        return std::nullopt;
    const auto [rest, noFraction] = std::from_chars(blank + 1, end, fraction);
    return noFraction == std::errc{} ? std::optional(fraction) : std::nullopt;
}

RunningBackup::Stop RunningBackup::stop() {
    const auto running = process();
    if (!running)
        return Stop::nothingRan;
    const Descriptor opened = openProcess(*running);
    // From here on the descriptor means the process that had the lock, or one that has it now.
    if (process() != running)
        return Stop::stopped;
    // A shell that starts programs in the background has them ignore SIGINT.
    ::syscall(SYS_pidfd_send_signal, opened.get(), SIGTERM, nullptr, 0);
    return hasEnded(opened, std::chrono::minutes(1)) ? Stop::stopped : Stop::stillRunning;
}

} // namespace velmorquit::tmutil
