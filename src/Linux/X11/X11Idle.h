#pragma once

#include "Linux/Input/IdleSource.h"
#include "Linux/X11/X11Events.h"

namespace velmorquit {

/// The X server's knowledge of the user's input, by its screen saver extension.
class X11Idle final : public IdleSource {
public:
    /// The events must outlive it.
    explicit X11Idle(X11Events& events) : events_(events) {}

    [[nodiscard]] std::optional<Duration> sinceInput() override;

private:
    X11Events& events_;
};

} // namespace velmorquit
