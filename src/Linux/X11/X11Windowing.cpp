#include "Linux/X11/X11Windowing.h"

#include "Linux/X11/X11Events.h"
#include "Linux/X11/X11Idle.h"
#include "Linux/X11/X11Toplevels.h"
#include "Linux/X11/X11Tray.h"
#include "Linux/X11/X11WindowSystem.h"
#include "Linux/X11/XSettings.h"

#include <utility>

namespace velmorquit {

struct X11Windowing::Adapters {
    Adapters(MainLoop& loop, SystemLog& log, X11Connection forToplevels, X11Connection forFace)
        : toplevels(loop, log, std::move(forToplevels)), events(std::move(forFace)), idle(events),
          own(loop, events), settings(events), tray(events) {}

    X11Toplevels toplevels;
    X11Events events;
    X11Idle idle;
    X11WindowSystem own;
    XSettings settings;
    X11Tray tray;
};

std::unique_ptr<X11Windowing> X11Windowing::connect() {
    auto forToplevels = X11Connection::open();
    auto forFace = X11Connection::open();
    if (!forToplevels || !forFace)
        return nullptr;
    return std::unique_ptr<X11Windowing>(
        new X11Windowing(*std::move(forToplevels), *std::move(forFace)));
}

X11Windowing::X11Windowing(X11Connection forToplevels, X11Connection forFace)
    : forToplevels_(std::move(forToplevels)), forFace_(std::move(forFace)) {}

X11Windowing::~X11Windowing() = default;

WindowSources X11Windowing::begin(MainLoop& loop, SystemLog& log) {
    adapters_ =
        std::make_unique<Adapters>(loop, log, *std::move(forToplevels_), *std::move(forFace_));
    return {.toplevels = &adapters_->toplevels,
            .own = &adapters_->own,
            .tray = &adapters_->tray,
            .settings = &adapters_->settings,
            .idle = &adapters_->idle};
}

} // namespace velmorquit
