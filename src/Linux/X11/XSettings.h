#pragma once

#include "Linux/Appearance/SettingsManager.h"
#include "Linux/Loop/Paced.h"
#include "Linux/X11/X11Events.h"
#include "Linux/X11/X11Selection.h"
#include "Loop/Subscribers.h"

#include <optional>
#include <string_view>

namespace velmorquit {

/// The numbers and texts in the property of a settings manager's window, without colours. None if
/// the bytes are invalid.
[[nodiscard]] std::optional<DesktopSettings> parseXSettings(std::string_view bytes);

/// The settings manager of an X server, if there is one.
class XSettings final : public SettingsManager, private X11Events::Listener {
public:
    /// The events must outlive it.
    explicit XSettings(X11Events& events);

    /// If the property can't be read, the former values stay.
    [[nodiscard]] const DesktopSettings& values() const override { return values_; }
    /// The callback is under the restrictions of listeners.
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
    /// Last, since its constructor lets events be heard.
    X11Selection manager_;
};

} // namespace velmorquit
