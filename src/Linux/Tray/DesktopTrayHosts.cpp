#include "Linux/Tray/DesktopTrayHosts.h"

namespace velmorquit {

namespace {

/// The icon is created anew with every change of hosts.
constexpr Paced::Pace pace{.rest = std::chrono::milliseconds(300)};

} // namespace

DesktopTrayHosts::DesktopTrayHosts(MainLoop& loop, const QDBusConnection& bus,
                                   EmbeddingTray* embedding)
    : changes_(pace, [this] { observers_.tell(); }),
      notifier_(loop, bus, [this] { changes_.ask(); }), embedding_(embedding) {
    if (embedding_)
        embeddingChanges_ = embedding_->observe([this] { noteEmbedding(); });
}

TrayHost DesktopTrayHosts::present() const {
    if (!notifier_.presentOne().isEmpty())
        return TrayHost::notifier;
    return embedding_ && embedding_->isPresent() ? TrayHost::embedding : TrayHost::none;
}

void DesktopTrayHosts::takeIn(std::uint64_t window) const {
    if (embedding_)
        embedding_->takeIn(window);
}

// While there is a notifier, the embedding tray makes no difference.
void DesktopTrayHosts::noteEmbedding() {
    if (notifier_.presentOne().isEmpty())
        changes_.ask();
}

} // namespace velmorquit
