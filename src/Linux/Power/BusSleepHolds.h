#pragma once

#include "Linux/Power/BusSleepHold.h"
#include "Platform/SleepHold.h"

#include <QDBusServiceWatcher>

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace velmorquit {

/// Holds off the sleep of an idle computer. A service that appears later, or returns after a crash,
/// is asked when it comes. A hold that ends while there is another one lasts a moment longer, since
/// the other one may not have been granted yet.
class BusSleepHolds final : public SleepHold {
public:
    /// Both buses must outlive it.
    BusSleepHolds(const PowerBus& session, const PowerBus& system);

    [[nodiscard]] Handle begin(const std::string& reason) override;

private:
    struct Hold {
        Hold(std::string why, const PowerBus& session, const PowerBus& system)
            : reason(std::move(why)), hold(session, system) {}

        std::string reason;
        BusSleepHold hold;
    };
    struct Holds final : Handle::Source {
        void cancel(std::uint64_t id) noexcept override;
        std::map<std::uint64_t, Hold> byId;
        std::uint64_t lastId = 0;
    };

    void watch(QDBusServiceWatcher& watcher, const PowerBus& bus,
               const QStringList& services) const;

    const PowerBus& session_;
    const PowerBus& system_;
    std::shared_ptr<Holds> holds_ = std::make_shared<Holds>();
    QDBusServiceWatcher sessionWatcher_;
    QDBusServiceWatcher systemWatcher_;
};

} // namespace velmorquit
