#include "Linux/Applications/ProcessHandle.h"

#include "Linux/Proc/ProcessStat.h"

#include <cerrno>
#include <utility>

// glibc 2.36 declares these without C linkage.
extern "C" {
#include <sys/pidfd.h>
}
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

namespace velmorquit {

namespace {

/// Descriptors left for everything else: for reading from /proc, for painting (each picture shared
/// with the X server takes one), for writing preferences.
constexpr rlim_t reserve = 16;

bool isOfReserve(int descriptor) {
    rlimit limit{};
    return ::getrlimit(RLIMIT_NOFILE, &limit) == 0 &&
           static_cast<rlim_t>(descriptor) + reserve >= limit.rlim_cur;
}

} // namespace

// The descriptor refers to whichever process has the id at that instant. It is the right one if the
// start time is the same before and after; that is unknown where the system hides the processes of
// other users.
std::unique_ptr<ProcessHandle> ProcessHandle::open(ProcessId id, std::function<void()> ended) {
    const auto before = readProcessStat(id);
    const int descriptor = ::pidfd_open(id, 0);
    if (descriptor < 0)
        return nullptr;
    if (isOfReserve(descriptor)) {
        ::close(descriptor);
        return nullptr;
    }
    const auto after = readProcessStat(id);
    const auto startTime = [](const auto& stat) { return stat ? stat->startTime : 0; };
    if (startTime(before) != startTime(after)) {
        ::close(descriptor);
        return nullptr;
    }
    return std::unique_ptr<ProcessHandle>(new ProcessHandle(id, descriptor, std::move(ended)));
}

ProcessHandle::ProcessHandle(ProcessId id, int descriptor, std::function<void()> ended)
    : id_(id), descriptor_(descriptor), notifier_(descriptor, QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                     [this, ended = std::move(ended)] {
                         notifier_.setEnabled(false);
                         // The callback may destroy this object.
                         const auto told = ended;
                         told();
                     });
}

ProcessHandle::~ProcessHandle() {
    notifier_.setEnabled(false);
    ::close(descriptor_);
}

bool ProcessHandle::hasEnded() const {
    pollfd poll{descriptor_, POLLIN, 0};
    return ::poll(&poll, 1, 0) > 0;
}

ProcessHandle::Signalled ProcessHandle::send(int signal) const {
    if (::pidfd_send_signal(descriptor_, signal, nullptr, 0) == 0 || errno == ESRCH)
        return Signalled::yes;
    return Signalled::refused;
}

} // namespace velmorquit
