#pragma once

#include "Loop/Subscribers.h"
#include "Platform/Appearance.h"
#include "Platform/DesktopFace.h"
#include "Platform/TrayHosts.h"
#include "Platform/WindowSystem.h"

#include <functional>
#include <utility>

namespace velmorquit {

class SimulatedWindowSystem final : public WindowSystem {
public:
    [[nodiscard]] bool isCompositing() const override { return compositing; }
    [[nodiscard]] Handle observeCompositing(std::function<void()> changed) override {
        return compositors_.add(std::move(changed));
    }
    void activate(std::uint64_t window) override { activated = window; }
    void keepOffLists(std::uint64_t) override {}
    void limitInput(std::uint64_t, const ScreenRect& area) override { inputArea = area; }
    [[nodiscard]] Handle observePresses(std::function<void()> pressed) override {
        return presses_.add(std::move(pressed));
    }

    /// A pointer button goes down somewhere.
    void press() { presses_.tell(); }
    void setCompositing(bool isOn) {
        compositing = isOn;
        compositors_.tell();
    }

    bool compositing = true;
    std::uint64_t activated = 0;
    ScreenRect inputArea;

private:
    Subscribers compositors_;
    Subscribers presses_;
};

class SimulatedAppearance final : public Appearance {
public:
    [[nodiscard]] bool isHighContrast() const override { return highContrast; }
    [[nodiscard]] bool isMotionReduced() const override { return motionReduced; }
    [[nodiscard]] bool isDark() const override { return dark; }
    [[nodiscard]] Handle observe(std::function<void()> changed) const override {
        return observers_.add(std::move(changed));
    }

    void tell() { observers_.tell(); }

    bool highContrast = false;
    bool motionReduced = false;
    bool dark = false;

private:
    mutable Subscribers observers_;
};

class SimulatedTrayHosts final : public TrayHosts {
public:
    [[nodiscard]] TrayHost present() const override { return host; }
    void takeIn(std::uint64_t) const override {}
    [[nodiscard]] Handle observe(std::function<void()> changed) const override {
        return observers_.add(std::move(changed));
    }

    void become(TrayHost next) {
        host = next;
        observers_.tell();
    }

    TrayHost host = TrayHost::embedding;

private:
    mutable Subscribers observers_;
};

/// The parts of a simulated desktop that the program's own windows see.
struct SimulatedFace {
    SimulatedWindowSystem windows;
    SimulatedAppearance appearance;
    SimulatedTrayHosts trayHosts;
    DesktopTraits traits;

    [[nodiscard]] DesktopFace ports() {
        return {
            .windows = windows, .appearance = appearance, .trayHosts = trayHosts, .traits = traits};
    }
};

} // namespace velmorquit
