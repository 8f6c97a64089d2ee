#pragma once

#include "Linux/X11/X11Events.h"

#include <functional>
#include <string>

namespace velmorquit {

/// Who holds a selection of the screen. Parts of the desktop of which there is but one, like the
/// compositor, are known by such a selection.
class X11Selection final : private X11Events::Listener {
public:
    /// `name` lacks the number of the screen. Calls `changed`, which is bound by what binds
    /// listeners, whenever somebody takes the selection or lets it go, never before it is made. On
    /// a server that can't tell, what was found at the start holds.
    X11Selection(X11Events& events, const std::string& name, std::function<void()> changed);

    /// From memory; none when nobody holds it.
    [[nodiscard]] xcb_window_t owner() const { return owner_; }

private:
    void hear(const xcb_generic_event_t& event) override;
    void watch();

    std::function<void()> changed_;
    xcb_atom_t atom_;
    xcb_window_t owner_ = XCB_WINDOW_NONE;
    /// The type of the events that tell of selections; 0 where the server has none.
    int notification_ = 0;
};

} // namespace velmorquit
