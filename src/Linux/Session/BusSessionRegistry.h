#pragma once

#include "Linux/Power/PowerBus.h"
#include "Loop/Time.h"
#include "Platform/SessionRegistry.h"

#include <functional>
#include <memory>
#include <optional>

namespace velmorquit {

/// The accounts of login1, of the session manager if it is of GNOME's kind, and of Plasma's power
/// manager. None of them is started for this.
class BusSessionRegistry final : public SessionRegistry {
public:
    struct Settings {
        /// How long all answers together may take.
        Duration limit = 3s;
    };

    /// Both buses must outlive it.
    BusSessionRegistry(const PowerBus& session, const PowerBus& system, Settings settings);
    ~BusSessionRegistry() override;

    [[nodiscard]] Handle
    read(std::function<void(const std::optional<SessionAccount>&)> told) override;

private:
    class Reading;
    struct Readings;

    const PowerBus& session_;
    const PowerBus& system_;
    Settings settings_;
    std::shared_ptr<Readings> readings_;
};

} // namespace velmorquit
