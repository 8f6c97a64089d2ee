#include "Linux/Program/EndSignals.h"

#include <atomic>
#include <cerrno>
#include <cstdint>

#include <sys/eventfd.h>
#include <unistd.h>

namespace velmorquit {

namespace {

constexpr std::array signals{SIGTERM, SIGINT};

/// The only thing that a signal handler can reach.
std::atomic<int> receiver = -1;
static_assert(std::atomic<int>::is_always_lock_free);

void note(int /*signal*/) {
    const int error = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(receiver, &one, sizeof one);
    errno = error;
}

} // namespace

EndSignals::EndSignals() : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    // Without a descriptor the signals keep their default effect, which ends the program as well.
    if (!event_)
        return;
    receiver = event_.get();
    notifier_.emplace(event_.get(), QSocketNotifier::Read);
    QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_, [this] { hear(); });
    for (std::size_t index = 0; index < signals.size(); ++index) {
        struct sigaction former{};
        ::sigaction(signals[index], nullptr, &former);
        if (former.sa_handler == SIG_IGN)
            continue;
        struct sigaction action{};
        action.sa_handler = note;
        action.sa_flags = SA_RESTART;
        ::sigaction(signals[index], &action, nullptr);
        former_[index] = former;
    }
}

EndSignals::~EndSignals() {
    for (std::size_t index = 0; index < signals.size(); ++index) {
        if (former_[index])
            ::sigaction(signals[index], &*former_[index], nullptr);
    }
    receiver = -1;
}

void EndSignals::hear() const {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto size = ::read(event_.get(), &count, sizeof count);
    if (onAsked)
        onAsked();
}

} // namespace velmorquit
