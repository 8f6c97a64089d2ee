#pragma once

#include "Linux/Power/BusSleepHold.h"
#include "Platform/SleepHold.h"

#include <QDBusServiceWatcher>

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace velmorquit {

/// Holds off the sleep that comes because nobody uses the computer. A service that was not there,
/// or that comes back after it has crashed, is asked when it comes. A hold that ends while there is
/// another one lasts a moment longer: that one may have to be granted yet.
class BusSleepHolds final : public SleepHold {
public:
    /// Both buses outlive it.
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
