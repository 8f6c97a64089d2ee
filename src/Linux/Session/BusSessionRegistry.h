#pragma once

#include "Linux/Power/PowerBus.h"
#include "Loop/Time.h"
#include "Platform/SessionRegistry.h"

#include <functional>
#include <memory>
#include <optional>

namespace velmorquit {

/// The accounts of login1, of the session manager where it is one of GNOME's kind, and of Plasma's
/// manager of power. None of them is started for it.
class BusSessionRegistry final : public SessionRegistry {
public:
    struct Settings {
        /// Time that all answers together may take.
        Duration limit = 3s;
    };

    /// Both buses outlive it.
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
