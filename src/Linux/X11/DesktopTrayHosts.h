#pragma once

#include "Linux/DBus/NotifierWatcher.h"
#include "Linux/Paced.h"
#include "Linux/X11/X11Selection.h"
#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"
#include "Platform/TrayHosts.h"

namespace velmorquit {

/// Who shows tray icons on a desktop with a session bus and an X server.
class DesktopTrayHosts final : public TrayHosts {
public:
    /// `bus` is the session bus, connected or not. The loop and the events outlive it.
    DesktopTrayHosts(MainLoop& loop, const QDBusConnection& bus, X11Events& events);

    /// Right from the start on: that somebody takes windows in is known at once, and whether there
    /// is a notifier the bus says at once. One that turns out to show nothing, or doesn't say
    /// within `NotifierWatcher::patience` whether it does, stops counting then.
    [[nodiscard]] TrayHost present() const override;

    /// Over the toolkit's connection, so that the window is there when the host hears of it.
    void takeIn(std::uint64_t window) const override;

    [[nodiscard]] Handle observe(std::function<void()> changed) const override {
        return observers_.add(std::move(changed));
    }

private:
    void noteEmbedding();

    xcb_atom_t request_;
    mutable Subscribers observers_;
    Paced changes_;
    NotifierWatcher notifier_;
    X11Selection embedding_;
};

} // namespace velmorquit
