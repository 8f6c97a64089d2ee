#include "Linux/Tray/DesktopTrayHosts.h"

namespace velmorquit {

namespace {

/// With every change of hosts the icon is made anew.
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

// Beside a notifier it makes no difference.
void DesktopTrayHosts::noteEmbedding() {
    if (notifier_.presentOne().isEmpty())
        changes_.ask();
}

} // namespace velmorquit
