#pragma once

#include "Linux/Appearance/SettingsManager.h"
#include "Linux/Loop/Paced.h"
#include "Linux/X11/X11Events.h"
#include "Linux/X11/X11Selection.h"
#include "Loop/Subscribers.h"

#include <optional>
#include <string_view>

namespace velmorquit {

/// The numbers and texts that a settings manager has put into a property of its window; colours are
/// left out. None when the bytes are not what they should be.
[[nodiscard]] std::optional<DesktopSettings> parseXSettings(std::string_view bytes);

/// What the settings manager of an X server says, where there is one.
class XSettings final : public SettingsManager, private X11Events::Listener {
public:
    /// The events outlive it.
    explicit XSettings(X11Events& events);

    /// What can't be read leaves what was there before.
    [[nodiscard]] const DesktopSettings& values() const override { return values_; }
    /// The callback is bound by what binds listeners.
    [[nodiscard]] Handle observe(std::function<void()> changed) override {
        return observers_.add(std::move(changed));
    }

private:
    void hear(const xcb_generic_event_t& event) override;
    void follow();
    void read();

    xcb_atom_t property_;
    DesktopSettings values_;
    Subscribers observers_;
    Paced changes_;
    /// The last: making it lets events be heard.
    X11Selection manager_;
};

} // namespace velmorquit
