#pragma once

#include "Loop/MainLoop.h"
#include "Platform/DesktopFace.h"
#include "Services/Popover.h"
#include "Theme/AppTheme.h"

#include <QPropertyAnimation>

#include <functional>
#include <memory>

class QWidget;

namespace velmorquit {

class PanelFrame;
class PanelView;

/// The panel in a window of its own, which grabs neither pointer nor keyboard: it closes on a press
/// outside, on Escape, and when the user turns to another window.
class PanelPopover : public Popover {
public:
    /// `makePanel` is called when the panel is shown for the first time, and again when its look is
    /// to be another. While `isKept` says so, windows that come to the front do not close it: they
    /// may be the questions of applications that were asked to quit.
    PanelPopover(MainLoop& loop, const DesktopFace& face,
                 std::function<std::unique_ptr<PanelView>()> makePanel,
                 std::function<bool()> isKept);
    ~PanelPopover() override;

    [[nodiscard]] bool isShown() const override { return isShown_; }
    void show(const std::optional<ScreenRect>& anchor) override;
    void showAside(const std::optional<ScreenRect>& anchor) override;
    void close() override;
    /// Whether it has been drawn since it was shown.
    [[nodiscard]] bool isDrawn() const { return isShown_ && isDrawn_; }
    [[nodiscard]] bool wasClosedByLastPress() const override;

private:
    class Window;

    void makeWindow();
    void open(const std::optional<ScreenRect>& anchor);
    void takeKeyboard();
    void fit();
    void applyShape();
    void limitInput();
    void noteDrawn();
    void fade(double from, double to);
    void hearPress();
    void leaveFocus();
    [[nodiscard]] ScreenRect workArea() const;
    [[nodiscard]] AppTheme::Look wantedLook() const;

    MainLoop& loop_;
    DesktopFace face_;
    std::function<std::unique_ptr<PanelView>()> makePanel_;
    std::function<bool()> isKept_;
    std::unique_ptr<Window> window_;
    PanelFrame* frame_ = nullptr;
    QPropertyAnimation fade_;
    std::optional<ScreenRect> anchor_;
    bool isShown_ = false;
    bool isDrawn_ = false;
    /// It was shown without being given the keyboard.
    bool isAside_ = false;
    /// While it is set, presses go to the windows below.
    Handle settling_;
    bool wasClosedByLastPress_ = false;
    std::optional<Uptime> leftAt_;
    Handle activation_;
    Handle presses_;
    Handle compositing_;
    Handle appearance_;
};

} // namespace velmorquit
