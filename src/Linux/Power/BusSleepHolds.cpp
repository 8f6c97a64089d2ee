#include "Linux/Power/BusSleepHolds.h"

#include <QTimer>

namespace velmorquit {

void BusSleepHolds::Holds::cancel(std::uint64_t id) noexcept {
    constexpr int untilGranted = 1000;
    auto held = byId.extract(id);
    if (held && !byId.empty())
        QTimer::singleShot(untilGranted,
                           [kept = std::make_shared<decltype(held)>(std::move(held))] {});
}

BusSleepHolds::BusSleepHolds(const PowerBus& session, const PowerBus& system)
    : session_(session), system_(system) {
    watch(sessionWatcher_, session_, BusSleepHold::sessionServices());
    watch(systemWatcher_, system_, {BusSleepHold::systemService()});
}

void BusSleepHolds::watch(QDBusServiceWatcher& watcher, const PowerBus& bus,
                          const QStringList& services) const {
    if (!bus.problem().empty())
        return;
    watcher.setConnection(bus.connection());
    watcher.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    watcher.setWatchedServices(services);
    // All are renewed: a moment without a hold puts no computer to sleep.
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, &watcher,
                     [holds = holds_.get()] {
                         for (auto& [id, held] : holds->byId)
                             held.hold.begin(held.reason, BusSleepHold::Against::idleSleep);
                     });
}

Handle BusSleepHolds::begin(const std::string& reason) {
    const std::uint64_t id = ++holds_->lastId;
    const auto [entry, isNew] = holds_->byId.try_emplace(id, reason, session_, system_);
    entry->second.hold.begin(reason, BusSleepHold::Against::idleSleep);
    return {holds_, id};
}

} // namespace velmorquit
