#pragma once

#include "Loop/Subscribers.h"
#include "Platform/Appearance.h"
#include "Platform/DesktopFace.h"
#include "Platform/Screens.h"
#include "Platform/TrayHosts.h"
#include "Platform/WindowSystem.h"

#include <functional>
#include <utility>
#include <vector>

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

    /// A pointer button is pressed somewhere.
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

/// One screen by default. Settings are in the toolkit's coordinates.
class SimulatedScreens final : public Screens {
public:
    [[nodiscard]] std::vector<Screen> all() const override { return screens_; }
    [[nodiscard]] ScreenPoint pointer() const override { return turned(pointer_); }
    [[nodiscard]] Handle observe(std::function<void()> changed) const override {
        return observers_.add(std::move(changed));
    }

    void set(const std::vector<Screen>& screens) {
        screens_.clear();
        for (const Screen& screen : screens)
            screens_.push_back({turned(screen.frame), turned(screen.usable)});
        observers_.tell();
    }
    void point(ScreenPoint place) { pointer_ = place; }

private:
    static constexpr ScreenRect usual{0, 0, 800, 800};

    std::vector<Screen> screens_{{turned(usual), turned(usual)}};
    ScreenPoint pointer_;
    mutable Subscribers observers_;
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

/// The simulated desktop as seen by the program's own windows.
struct SimulatedFace {
    SimulatedWindowSystem windows;
    SimulatedScreens screens;
    SimulatedAppearance appearance;
    SimulatedTrayHosts trayHosts;
    DesktopTraits traits;

    [[nodiscard]] DesktopFace ports() {
        return {.windows = windows,
                .screens = screens,
                .appearance = appearance,
                .trayHosts = trayHosts,
                .traits = traits};
    }
};

} // namespace velmorquit
