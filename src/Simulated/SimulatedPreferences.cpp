#include "Simulated/SimulatedPreferences.h"

namespace velmorquit {

std::optional<Value> SimulatedPreferences::object(std::string_view key) const {
    const auto found = values_.find(std::string(key));
    if (found == values_.end())
        return std::nullopt;
    return found->second;
}

void SimulatedPreferences::set(std::string_view key, Value value) {
    values_.insert_or_assign(std::string(key), std::move(value));
    observers_.tellLater(loop_);
}

void SimulatedPreferences::remove(std::string_view key) {
    if (values_.erase(std::string(key)) > 0)
        observers_.tellLater(loop_);
}

} // namespace velmorquit
