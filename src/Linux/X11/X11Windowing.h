#pragma once

#include "Linux/Windows/Windowing.h"
#include "Linux/X11/X11Connection.h"

#include <memory>
#include <optional>

namespace velmorquit {

/// An X server with its window manager, tray and settings manager.
class X11Windowing final : public Windowing {
public:
    /// Null when the server of `$DISPLAY` can't be reached.
    static std::unique_ptr<X11Windowing> connect();

    ~X11Windowing() override;

    [[nodiscard]] const char* toolkitPlatform() const override { return "xcb"; }
    WindowSources begin(MainLoop& loop, SystemLog& log) override;

private:
    struct Adapters;

    /// Two connections, since each client selects its own root events.
    X11Windowing(X11Connection forToplevels, X11Connection forFace);

    std::optional<X11Connection> forToplevels_;
    std::optional<X11Connection> forFace_;
    std::unique_ptr<Adapters> adapters_;
};

} // namespace velmorquit
