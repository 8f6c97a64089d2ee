#include "Views/PanelPopover.h"

#include "Platform/Screens.h"
#include "Platform/WindowSystem.h"
#include "Theme/AppTheme.h"
#include "Theme/LookOwner.h"
#include "Views/FloatingWindow.h"
#include "Views/PanelFrame.h"
#include "Views/PopoverPlace.h"

#include <QApplication>

#include <utility>

namespace velmorquit {
namespace {

/// How long before a press is reported the window may have lost the keyboard because of it.
constexpr Duration samePress = 300ms;
/// How long a user may still be clicking on what was there before a panel opened unasked.
constexpr Duration settlingTime = 700ms;

FloatingWindow::Style windowStyle() {
    // Further out the shadow is fainter than two steps of a colour.
    constexpr int shadowRoom = 60;
    return {.cornerRadius = AppTheme::windowCornerRadius,
            .shadow = {AppTheme::withOpacity(Qt::black, 0.5), 22, QPointF(0, 12)},
            .shadowRoom = shadowRoom};
}

} // namespace

PanelPopover::PanelPopover(const Surroundings& surroundings,
                           std::function<std::unique_ptr<PanelView>()> makePanel,
                           std::function<bool()> isKept)
    : loop_(surroundings.loop), face_(surroundings.face), looks_(surroundings.looks),
      makePanel_(std::move(makePanel)), isKept_(std::move(isKept)) {
    looksChange_ = looks_.observe([this] { window_.reset(); });
}

PanelPopover::~PanelPopover() = default;

bool PanelPopover::isShown() const { return window_ && window_->isShown(); }
bool PanelPopover::isDrawn() const { return window_ && window_->isDrawn(); }

void PanelPopover::makeWindow() {
    window_ = std::make_unique<FloatingWindow>(loop_, face_, windowStyle());
    window_->setObjectName(QStringLiteral("PanelPopover"));
    window_->onDrawn = [this] {
        if (!isAside_)
            window_->takeKeyboard();
    };
    window_->onLeave = [this] { leaveFocus(); };
    window_->onDismiss = [this] { close(); };
    window_->onOtherScreens = [this] { fit(); };
    auto panel = makePanel_();
    panel->onResize = [this] {
        if (isShown())
            fit();
    };
    frame_ = new PanelFrame(panel.release());
    window_->setContent(*frame_);
}

void PanelPopover::show(const std::optional<ScreenRect>& anchor) {
    const bool wasAside = std::exchange(isAside_, false);
    if (!isShown()) {
        open(anchor);
    } else if (wasAside) {
        settling_.reset();
        window_->letPressesThrough(false);
        if (isDrawn())
            window_->takeKeyboard();
    }
}

void PanelPopover::showAside(const std::optional<ScreenRect>& anchor) {
    if (isShown())
        return;
    isAside_ = true;
    settling_ = loop_.after(settlingTime, [this] {
        settling_.reset();
        window_->letPressesThrough(false);
    });
    open(anchor);
}

void PanelPopover::open(const std::optional<ScreenRect>& anchor) {
    look_ = looks_.hold();
    if (!window_)
        makeWindow();
    anchor_ = anchor;
    wasClosedByLastPress_ = false;
    leftAt_.reset();
    frame_->panel().render();
    fit();
    window_->letPressesThrough(settling_.isSet());
    window_->appear(isAside_ ? FloatingWindow::Manner::unbidden : FloatingWindow::Manner::wanted);
    // Not on a button: a key meant for another window would press it.
    frame_->panel().setFocus(Qt::PopupFocusReason);
    presses_ = face_.windows.observePresses([this] { hearPress(); });
}

void PanelPopover::close() {
    if (!isShown())
        return;
    settling_.reset();
    isAside_ = false;
    window_->vanish();
    look_.reset();
    if (onClose)
        onClose();
}

void PanelPopover::fit() {
    const ScreenPoint place =
        anchor_ ? ScreenPoint{anchor_->x + anchor_->width / 2, anchor_->y + anchor_->height / 2}
                : turned(face_.screens.pointer());
    const ScreenRect room = turned(face_.screens.at(turned(place)).usable);
    frame_->fit(mostPopoverHeight(room));
    const PopoverPlace corner = placePopover(anchor_, room, frame_->width(), frame_->height());
    window_->place({corner.x, corner.y});
}

void PanelPopover::leaveFocus() {
    // The panel's own menus and questions come to the front as well.
    const bool isOwn = QApplication::activeWindow() || QApplication::activePopupWidget();
    if (!isShown() || isOwn || isKept_())
        return;
    close();
    leftAt_ = loop_.uptime();
}

// The press that has moved the keyboard elsewhere is reported a little later.
bool PanelPopover::wasClosedByLastPress() const {
    return wasClosedByLastPress_ || (leftAt_ && loop_.uptime() - *leftAt_ < samePress);
}

void PanelPopover::hearPress() {
    if (!isShown()) {
        const bool isSame = leftAt_ && loop_.uptime() - *leftAt_ < samePress;
        leftAt_.reset();
        wasClosedByLastPress_ = isSame;
        if (!isSame)
            presses_.reset();
        return;
    }
    // The user can't have seen the panel yet.
    if (settling_.isSet() || holdsPointer())
        return;
    close();
    wasClosedByLastPress_ = true;
}

/// Whether a press at the pointer belongs to the panel, its icon or another window of its own.
bool PanelPopover::holdsPointer() const {
    const ScreenPoint place = turned(face_.screens.pointer());
    const QPoint pointer(place.x, place.y);
    const QWidget* below = QApplication::topLevelAt(pointer);
    const bool isOther = below && below != window_.get();
    // The icon reports presses on itself.
    const bool isOnIcon =
        anchor_ && anchor_->width > 1 &&
        QRect(anchor_->x, anchor_->y, anchor_->width, anchor_->height).contains(pointer);
    return isOther || isOnIcon || QApplication::activePopupWidget() ||
           window_->contentOnScreen().contains(pointer);
}

} // namespace velmorquit
