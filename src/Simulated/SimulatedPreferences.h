#pragma once

#include "Loop/Subscribers.h"
#include "Platform/Preferences.h"

namespace velmorquit {

/// The preferences in memory.
class SimulatedPreferences final : public Preferences {
public:
    explicit SimulatedPreferences(MainLoop& loop) : loop_(loop) {}

    [[nodiscard]] std::optional<Value> object(std::string_view key) const override;
    void set(std::string_view key, Value value) override;
    void remove(std::string_view key) override;
    void refresh() override {
        if (onRefresh)
            onRefresh();
    }
    [[nodiscard]] Handle observe(std::function<void()> changed) override {
        return observers_.add(std::move(changed));
    }

    /// Lets a test store something as another program just before a refresh.
    std::function<void()> onRefresh;

    /// All stored values.
    [[nodiscard]] const Value::Dictionary& values() const { return values_; }

private:
    MainLoop& loop_;
    Value::Dictionary values_;
    Subscribers observers_;
};

} // namespace velmorquit
