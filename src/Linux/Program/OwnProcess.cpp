#include "Linux/Program/OwnProcess.h"

#include <algorithm>
#include <csignal>

#include <malloc.h>
#include <sys/resource.h>

namespace velmorquit {

std::filesystem::path ownExecutable() {
    std::error_code unreadable;
    return std::filesystem::read_symlink("/proc/self/exe", unreadable);
}

// A handler, since ignored signals are inherited.
void surviveTheTerminal() {
    struct sigaction nothing{};
    nothing.sa_handler = [](int) {};
    nothing.sa_flags = SA_RESTART;
    for (const int signal : {SIGHUP, SIGPIPE})
        ::sigaction(signal, &nothing, nullptr);
}

// By default the allocator keeps blocks as large as any that was freed before, up to 32 MB: the
// memory of one large message would be kept for good.
void giveMemoryBack() {
    constexpr int large = 4 << 20;
    ::mallopt(M_MMAP_THRESHOLD, large);
    ::mallopt(M_TRIM_THRESHOLD, large);
}

bool isShortOfDescriptors() {
    constexpr rlim_t usual = 1024;
    constexpr rlim_t few = 64;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= usual)
        return false;
    limit.rlim_cur = std::min(limit.rlim_max, usual);
    return ::setrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur < few;
}

} // namespace velmorquit
