#pragma once

#include "Linux/X11/X11Events.h"

#include <functional>
#include <string>

namespace velmorquit {

/// The owner of a selection of the screen. Unique parts of the desktop, like the compositor, are
/// known by such a selection.
class X11Selection final : private X11Events::Listener {
public:
    /// `name` is without the number of the screen. Calls `changed`, under the restrictions of
    /// listeners, whenever the selection gets or loses its owner, but never from the constructor.
    /// If the server can't tell, the owner found at the start is kept.
    X11Selection(X11Events& events, const std::string& name, std::function<void()> changed);

    /// From memory; none without an owner.
    [[nodiscard]] xcb_window_t owner() const { return owner_; }

private:
    void hear(const xcb_generic_event_t& event) override;
    void watch();

    std::function<void()> changed_;
    xcb_atom_t atom_;
    xcb_window_t owner_ = XCB_WINDOW_NONE;
    /// The type of the events about selections; 0 if the server has none.
    int notification_ = 0;
};

} // namespace velmorquit
