// How long the panel takes from the click to its first picture, both new and reopened, and how long
// it takes to show the changes of a refresh. It needs a display: scripts/virtual-desktop --
// panel_benchmark

#include "Services/AppUpdater.h"
#include "Services/QuitController/QuitController.h"
#include "Simulated/SimulatedDesktop.h"
#include "Simulated/SimulatedFace.h"
#include "Theme/LookOwner.h"
#include "Views/PanelPopover.h"
#include "Views/PanelView.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace velmorquit {
namespace {

/// A panel with that many applications.
class Stage {
public:
    explicit Stage(std::int64_t count) {
        desktop.kernel.total = 16384_MiB;
        for (std::int64_t number = 0; number < count; ++number)
            apps.push_back(&desktop.open("Applicazione " + std::to_string(number),
                                         static_cast<std::uint64_t>(1000 - number) << 20));
        face.appearance.motionReduced = true;
        settings = std::make_unique<Settings>(desktop.loop, desktop.preferences);
        controller = std::make_unique<QuitController>(desktop.ports(), *settings);
        updater = std::make_unique<AppUpdater>(desktop.loop);
        desktop.loop.settle();
    }

    [[nodiscard]] std::unique_ptr<PanelPopover> makePopover() {
        return std::make_unique<PanelPopover>(
            PanelPopover::Surroundings{desktop.loop, face.ports(), looks},
            [this] {
                return std::make_unique<PanelView>(*controller, *updater, desktop.ports(),
                                                   std::function<Menu()>());
            },
            [] { return true; });
    }

    SimulatedDesktop desktop;
    SimulatedFace face;
    LookOwner looks{face.appearance};
    std::vector<SimulatedApplication*> apps;
    std::unique_ptr<Settings> settings;
    std::unique_ptr<QuitController> controller;
    std::unique_ptr<AppUpdater> updater;
};

/// Until the window is on the screen with its whole content.
void showUntilDrawn(PanelPopover& popover) {
    popover.show(std::nullopt);
    while (!popover.isDrawn())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void firstFrame(benchmark::State& state) {
    Stage stage(state.range(0));
    for (auto iteration : state) {
        auto popover = stage.makePopover();
        showUntilDrawn(*popover);
        state.PauseTiming();
        popover.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(firstFrame)->Arg(0)->Arg(8)->Arg(300)->Unit(benchmark::kMillisecond)->UseRealTime();

void nextFrame(benchmark::State& state) {
    Stage stage(state.range(0));
    auto popover = stage.makePopover();
    showUntilDrawn(*popover);
    for (auto iteration : state) {
        state.PauseTiming();
        popover->close();
        QApplication::processEvents();
        state.ResumeTiming();
        showUntilDrawn(*popover);
    }
}
BENCHMARK(nextFrame)->Arg(8)->Arg(300)->Unit(benchmark::kMillisecond)->UseRealTime();

/// All figures have changed, and the order with them.
void refresh(benchmark::State& state) {
    Stage stage(state.range(0));
    auto popover = stage.makePopover();
    showUntilDrawn(*popover);
    std::uint64_t turn = 0;
    for (auto iteration : state) {
        ++turn;
        for (std::size_t at = 0; at < stage.apps.size(); ++at)
            stage.apps[at]->setMemory((1000 + (at * 7 + turn * 13) % 500) << 20);
        stage.controller->refresh();
        stage.desktop.loop.settle();
        QApplication::processEvents();
        QApplication::processEvents();
    }
}
BENCHMARK(refresh)->Arg(8)->Arg(300)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace velmorquit

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
