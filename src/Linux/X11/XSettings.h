#pragma once

#include "Linux/DesktopSettings.h"
#include "Linux/Paced.h"
#include "Linux/X11/X11Events.h"
#include "Linux/X11/X11Selection.h"

#include <functional>
#include <optional>
#include <string_view>

namespace velmorquit {

/// The numbers and texts that a settings manager has put into a property of its window; colours are
/// left out. None when the bytes are not what they should be.
[[nodiscard]] std::optional<DesktopSettings> parseXSettings(std::string_view bytes);

/// What the settings manager of an X server says, where there is one.
class XSettings final : private X11Events::Listener {
public:
    /// Calls `changed`, which is bound by what binds listeners, when it says something else.
    XSettings(X11Events& events, std::function<void()> changed);

    /// From memory; empty without a manager. What can't be read leaves what was there before.
    [[nodiscard]] const DesktopSettings& values() const { return values_; }

private:
    void hear(const xcb_generic_event_t& event) override;
    void follow();
    void read();

    xcb_atom_t property_;
    DesktopSettings values_;
    std::function<void()> changed_;
    Paced changes_;
    /// The last: making it lets events be heard.
    X11Selection manager_;
};

} // namespace velmorquit
