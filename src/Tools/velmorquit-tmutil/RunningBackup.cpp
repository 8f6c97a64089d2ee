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

/// A write lock on the whole file.
struct flock wholeFile() {
    struct flock lock{};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

/// A descriptor that becomes readable when the process ends.
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

// Unlike flock(2), this lock tells its owner without being taken for a moment, and children don't
// inherit it. Closing any descriptor of the file would release it: nothing else here opens it.
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
    // Until then, readers see the previous figure.
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
    // A process that was killed has left its figure behind.
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
    // From here on the descriptor refers to the owner of the lock, the former or the present one.
    if (process() != running)
        return Stop::stopped;
    // SIGINT may be ignored: shells start background programs that way.
    ::syscall(SYS_pidfd_send_signal, opened.get(), SIGTERM, nullptr, 0);
    return hasEnded(opened, std::chrono::minutes(1)) ? Stop::stopped : Stop::stillRunning;
}

} // namespace velmorquit::tmutil
