// How long it takes to ask 100 applications with one window each to quit. It needs a desktop of its
// own: scripts/virtual-desktop -t none -- request_benchmark

#include "Linux/Applications/LinuxWorkspace.h"
#include "Linux/Log/JournalLog.h"
#include "Linux/Loop/QtMainLoop.h"
#include "Linux/X11/X11Toplevels.h"
#include "support/Child.h"
#include "support/Waiting.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <list>

namespace velmorquit {
namespace {

constexpr std::size_t windows = 100;

void requests(benchmark::State& state) {
    auto connection = X11Connection::open();
    if (!connection)
        return state.SkipWithError("no display");
    std::list<Child> clients;
    for (std::size_t index = 0; index < windows; ++index)
        clients.emplace_back(std::vector<std::string>{RUDE_CLIENT, "--ignore"});
    JournalLog log;
    QtMainLoop loop;
    X11Toplevels toplevels(loop, log, std::move(*connection));
    LinuxWorkspace workspace(loop, log, toplevels, {});
    if (!waitUntil([&] { return workspace.runningApplications().size() == windows; }))
        return state.SkipWithError("not all windows are there");
    for ([[maybe_unused]] auto turn : state) {
        state.PauseTiming();
        // Lookups shared within a run have to expire.
        linger(120);
        state.ResumeTiming();
        for (const auto& application : workspace.runningApplications()) {
            if (!application->terminate(AskedBy::user))
                state.SkipWithError("a window could not be asked");
        }
    }
}

BENCHMARK(requests)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(10);

} // namespace
} // namespace velmorquit

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
