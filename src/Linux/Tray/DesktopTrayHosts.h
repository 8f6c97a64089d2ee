#pragma once

#include "Linux/Loop/Paced.h"
#include "Linux/Tray/EmbeddingTray.h"
#include "Linux/Tray/NotifierWatcher.h"
#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"
#include "Platform/TrayHosts.h"

namespace velmorquit {

/// The hosts of tray icons: those of the notifiers' watcher, or the window system's own tray.
class DesktopTrayHosts final : public TrayHosts {
public:
    /// `bus` is the session bus, connected or not. The loop outlives it, and so does the tray,
    /// which is null where the window system has no place for one.
    DesktopTrayHosts(MainLoop& loop, const QDBusConnection& bus, EmbeddingTray* embedding);

    /// Right from the start on: that somebody takes windows in is known at once, and whether there
    /// is a notifier the bus says at once. One that turns out to show nothing, or doesn't say
    /// within `NotifierWatcher::patience` whether it does, stops counting then.
    [[nodiscard]] TrayHost present() const override;

    void takeIn(std::uint64_t window) const override;

    [[nodiscard]] Handle observe(std::function<void()> changed) const override {
        return observers_.add(std::move(changed));
    }

private:
    void noteEmbedding();

    mutable Subscribers observers_;
    Paced changes_;
    NotifierWatcher notifier_;
    EmbeddingTray* embedding_;
    Handle embeddingChanges_;
};

} // namespace velmorquit
