#pragma once

#include "Linux/Tray/EmbeddingTray.h"
#include "Linux/X11/X11Events.h"
#include "Linux/X11/X11Selection.h"
#include "Loop/Subscribers.h"

namespace velmorquit {

/// The tray of an X server: the owner of its selection.
class X11Tray final : public EmbeddingTray {
public:
    /// The events must outlive it.
    explicit X11Tray(X11Events& events);

    [[nodiscard]] bool isPresent() const override { return tray_.owner() != XCB_WINDOW_NONE; }

    /// Over the toolkit's connection, so that the window exists before the tray hears of it.
    void takeIn(std::uint64_t window) const override;

    [[nodiscard]] std::set<ProcessId> owners() override;
    bool click(ProcessId process) override;
    /// The callback is under the restrictions of listeners.
    [[nodiscard]] Handle observe(std::function<void()> changed) override {
        return observers_.add(std::move(changed));
    }

private:
    X11Events& events_;
    xcb_atom_t request_;
    Subscribers observers_;
    /// Last, since its constructor lets events be heard.
    X11Selection tray_;
};

} // namespace velmorquit
