#include "Interruption.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace velmorquit {

namespace {

// The bus has a thread of its own, where a signal mask of the main thread would have no effect.
int descriptor = -1;

void note(int) {
    const int before = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(descriptor, &one, sizeof one);
    errno = before;
}

int opened() { return descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK); }

} // namespace

Interruption::Interruption(std::function<void()> heard)
    : notifier_(opened(), QSocketNotifier::Read) {
    connect(&notifier_, &QSocketNotifier::activated, this, [this, heard = std::move(heard)] {
        notifier_.setEnabled(false);
        heard();
    });
    if (descriptor >= 0 && std::signal(SIGINT, note) == SIG_IGN)
        std::signal(SIGINT, SIG_IGN);
}

Interruption::~Interruption() {
    if (std::signal(SIGINT, SIG_DFL) == SIG_IGN)
        std::signal(SIGINT, SIG_IGN);
    ::close(std::exchange(descriptor, -1));
}

} // namespace velmorquit
