// How long a look at all processes takes, compared with `ps` on the same processes in the same run.
// It needs process ids of its own: unshare --pid --fork --mount-proc refresh_benchmark

#include "Linux/Proc/ProcKernel.h"
#include "Services/MemoryMonitor.h"
#include "Services/QuitController/QuitController.h"
#include "Simulated/SimulatedDesktop.h"

#include <benchmark/benchmark.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {
namespace {

constexpr std::size_t applications = 60;
constexpr std::size_t helpersOfEach = 4;

/// Sleeping processes: applications, their helpers, and others that belong to none of them.
class Crowd {
public:
    explicit Crowd(std::size_t size) {
        const pid_t others = ::fork();
        if (others == 0)
            sleepWith(size - applications * (1 + helpersOfEach) - 1);
        all_.push_back(others);
        for (std::size_t index = 0; index < applications; ++index) {
            const pid_t child = ::fork();
            if (child == 0)
                sleepWith(helpersOfEach);
            ids.push_back(child);
            all_.push_back(child);
        }
        // By then the youngest has forked its helpers too.
        ::usleep(3'500'000);
    }
    Crowd(const Crowd&) = delete;
    Crowd& operator=(const Crowd&) = delete;
    ~Crowd() {
        for (const pid_t id : all_) {
            if (id > 0)
                ::kill(id, SIGKILL);
        }
        while (::wait(nullptr) > 0) {
        }
    }

    std::vector<ProcessId> ids;

private:
    /// They end with `parent`, even if it ended before they asked for that.
    [[noreturn]] static void sleepUntilKilled(pid_t parent) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        while (::getppid() == parent)
            ::pause();
        ::_exit(0);
    }
    [[noreturn]] static void sleepWith(std::size_t helpers) {
        const pid_t self = ::getpid();
        for (std::size_t index = 0; index < helpers; ++index) {
            if (::fork() == 0)
                sleepUntilKilled(self);
        }
        sleepUntilKilled(::getppid());
    }

    std::vector<pid_t> all_;
};

void footprints(benchmark::State& state) {
    const Crowd crowd(static_cast<std::size_t>(state.range(0)));
    const ProcKernel kernel;
    for ([[maybe_unused]] auto turn : state)
        benchmark::DoNotOptimize(MemoryMonitor::footprints(kernel, crowd.ids));
    state.counters["processes"] = static_cast<double>(kernel.processTable().size());
}

void ps(benchmark::State& state) {
    const Crowd crowd(static_cast<std::size_t>(state.range(0)));
    for ([[maybe_unused]] auto turn : state) {
        if (std::system("exec ps -eo pid,ppid,rss >/dev/null") != 0)
            state.SkipWithError("ps failed");
    }
}

void simulatedDay(benchmark::State& state) {
    for ([[maybe_unused]] auto turn : state) {
        SimulatedDesktop desktop;
        for (int number = 0; number < 20; ++number)
            desktop.open("App " + std::to_string(number), 100_MiB);
        Settings settings(desktop.loop, desktop.preferences);
        QuitController controller(desktop.ports(), settings);
        controller.startLiveUpdates();
        desktop.advance(24h);
    }
}

BENCHMARK(simulatedDay)->Unit(benchmark::kMillisecond);
BENCHMARK(footprints)->Arg(1000)->Arg(3000)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ps)->Arg(1000)->Arg(3000)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace velmorquit

BENCHMARK_MAIN();
