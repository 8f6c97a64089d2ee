#pragma once

#include "Loop/MainLoop.h"
#include "Platform/DesktopFace.h"
#include "Services/Popover.h"

#include <functional>
#include <memory>

namespace velmorquit {

class FloatingWindow;
class LookOwner;
class PanelFrame;
class PanelView;

/// The panel in a window of its own: it closes on a press outside, on Escape, and when the user
/// turns to another window.
class PanelPopover : public Popover {
public:
    /// All of it must outlive the panel.
    struct Surroundings {
        MainLoop& loop;
        DesktopFace face;
        LookOwner& looks;
    };

    /// `makePanel` is called when the panel is shown for the first time, and again when its look
    /// has changed. While `isKept` is true, windows that come to the front don't close it: they may
    /// be questions of applications that were asked to quit.
    PanelPopover(const Surroundings& surroundings,
                 std::function<std::unique_ptr<PanelView>()> makePanel,
                 std::function<bool()> isKept);
    ~PanelPopover() override;

    [[nodiscard]] bool isShown() const override;
    void show(const std::optional<ScreenRect>& anchor) override;
    void showAside(const std::optional<ScreenRect>& anchor) override;
    void close() override;
    /// Whether it has been drawn since it was shown.
    [[nodiscard]] bool isDrawn() const;
    [[nodiscard]] bool wasClosedByLastPress() const override;

private:
    void makeWindow();
    void open(const std::optional<ScreenRect>& anchor);
    void fit();
    void hearPress();
    void leaveFocus();
    [[nodiscard]] bool holdsPointer() const;

    MainLoop& loop_;
    DesktopFace face_;
    LookOwner& looks_;
    std::function<std::unique_ptr<PanelView>()> makePanel_;
    std::function<bool()> isKept_;
    std::unique_ptr<FloatingWindow> window_;
    PanelFrame* frame_ = nullptr;
    std::optional<ScreenRect> anchor_;
    /// It was shown without the keyboard.
    bool isAside_ = false;
    /// While it is set, presses go to the windows below.
    Handle settling_;
    bool wasClosedByLastPress_ = false;
    std::optional<Uptime> leftAt_;
    Handle look_;
    Handle looksChange_;
    Handle presses_;
};

} // namespace velmorquit
