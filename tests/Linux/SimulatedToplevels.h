#pragma once

#include "Linux/Windows/ToplevelSource.h"
#include "Loop/Subscribers.h"

#include <map>

namespace velmorquit {

/// The windows of a desktop that isn't there.
class SimulatedToplevels final : public ToplevelSource {
public:
    [[nodiscard]] const std::vector<Toplevel>& toplevels() override { return windows; }
    [[nodiscard]] Sight sight() override { return Sight::all; }
    [[nodiscard]] std::string title(std::uint64_t window) override { return titles[window]; }
    [[nodiscard]] const std::set<ProcessId>& shellProcesses() const override { return shell_; }
    [[nodiscard]] std::uint64_t activeWindow() const override { return 0; }
    [[nodiscard]] std::uint64_t focusedWindow() const override { return 0; }
    void askToClose(std::uint64_t) override {}
    void bringToFront(std::uint64_t) override {}
    void ping(std::uint64_t) override {}
    [[nodiscard]] bool isDeaf(std::uint64_t) const override { return false; }
    [[nodiscard]] Image icon(std::uint64_t) override { return {}; }
    [[nodiscard]] bool belongsTo(std::uint64_t, ProcessId) override { return true; }
    [[nodiscard]] Handle observe(std::function<void()> told) override {
        return observers_.add(std::move(told));
    }

    void tell() { observers_.tell(); }

    std::vector<Toplevel> windows;
    std::map<std::uint64_t, std::string> titles;

private:
    std::set<ProcessId> shell_;
    Subscribers observers_;
};

} // namespace velmorquit
