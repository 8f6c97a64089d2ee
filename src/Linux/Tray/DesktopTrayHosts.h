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
    /// `bus` is the session bus, connected or not. The loop must outlive it, and so must the tray,
    /// which is null if the window system has no place for one.
    DesktopTrayHosts(MainLoop& loop, const QDBusConnection& bus, EmbeddingTray* embedding);

    /// Correct from the start: whether there is an embedding tray is known at once, and the bus
    /// tells at once whether there is a notifier. One that turns out to show nothing, or doesn't
    /// answer within `NotifierWatcher::patience`, then stops counting.
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
