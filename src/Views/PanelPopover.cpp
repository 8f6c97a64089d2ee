#include "Views/PanelPopover.h"

#include "Platform/Appearance.h"
#include "Platform/WindowSystem.h"
#include "Theme/Shadow.h"
#include "Views/PanelFrame.h"
#include "Views/PopoverPlace.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRegion>
#include <QScreen>
#include <QWindow>

#include <utility>

namespace velmorquit {
namespace {

/// Around the panel, for its shadow.
constexpr int shadowMargin = 48;
/// How long before the news of a press a window may have lost the keyboard because of it.
constexpr Duration samePress = 300ms;
constexpr int fadeTime = 140;
/// How long the user may still be pressing on what was there before a panel that opened by itself.
constexpr Duration settlingTime = 700ms;

Shadow windowShadow() { return {AppTheme::withOpacity(Qt::black, 0.5), 22, QPointF(0, 12)}; }

} // namespace

class PanelPopover::Window : public QWidget {
public:
    explicit Window(PanelPopover& popover)
        : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::NoDropShadowWindowHint),
          popover_(popover) {
        setAttribute(Qt::WA_TranslucentBackground);
        setObjectName(QStringLiteral("PanelPopover"));
        setWindowTitle(QStringLiteral("Velmor Quit"));
    }

    void setPanelArea(const QRect& area) {
        panelArea_ = area;
        update();
    }
    [[nodiscard]] QRect panelOnScreen() const { return panelArea_.translated(pos()); }

protected:
    void paintEvent(QPaintEvent*) override {
        popover_.noteDrawn();
        if (!popover_.face_.windows.isCompositing())
            return;
        QPainter painter(this);
        drawShadow(painter, {panelArea_, AppTheme::windowCornerRadius}, windowShadow());
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Escape)
            popover_.close();
        else
            QWidget::keyPressEvent(event);
    }

    bool event(QEvent* event) override {
        if (event->type() == QEvent::WindowDeactivate)
            popover_.leaveFocus();
        return QWidget::event(event);
    }

    // By the window manager, or by the keys that close a window. At the program's end it is the
    // toolkit that closes it, and a window that refuses keeps the program from ending.
    void closeEvent(QCloseEvent* event) override {
        if (event->spontaneous()) {
            event->ignore();
            popover_.close();
        }
    }

private:
    PanelPopover& popover_;
    QRect panelArea_;
};

PanelPopover::PanelPopover(MainLoop& loop, const DesktopFace& face,
                           std::function<std::unique_ptr<PanelView>()> makePanel,
                           std::function<bool()> isKept)
    : loop_(loop), face_(face), makePanel_(std::move(makePanel)), isKept_(std::move(isKept)) {
    QObject::connect(&fade_, &QPropertyAnimation::finished, &fade_, [this] {
        if (!isShown_ && window_)
            window_->hide();
    });
    compositing_ = face_.windows.observeCompositing([this] {
        if (window_)
            fit();
    });
    appearance_ = face_.appearance.observe([this] {
        // What is on the screen keeps its look: it would close under the user's hands.
        if (!isShown_ && AppTheme::look() != wantedLook())
            window_.reset();
    });
}

PanelPopover::~PanelPopover() = default;

AppTheme::Look PanelPopover::wantedLook() const {
    return {face_.appearance.isHighContrast(), face_.appearance.isMotionReduced(),
            AppTheme::textScaleFor(QApplication::font())};
}

void PanelPopover::makeWindow() {
    AppTheme::setLook(wantedLook());
    window_ = std::make_unique<Window>(*this);
    auto panel = makePanel_();
    panel->onResize = [this] {
        if (isShown_)
            fit();
    };
    frame_ = new PanelFrame(panel.release(), window_.get());
    fade_.setTargetObject(window_.get());
    fade_.setPropertyName("windowOpacity");
}

void PanelPopover::show(const std::optional<ScreenRect>& anchor) {
    const bool wasAside = std::exchange(isAside_, false);
    if (!isShown_) {
        open(anchor);
    } else if (wasAside) {
        settling_.reset();
        limitInput();
        if (isDrawn_)
            takeKeyboard();
    }
}

void PanelPopover::showAside(const std::optional<ScreenRect>& anchor) {
    if (isShown_)
        return;
    isAside_ = true;
    settling_ = loop_.after(settlingTime, [this] {
        settling_.reset();
        limitInput();
    });
    open(anchor);
}

void PanelPopover::open(const std::optional<ScreenRect>& anchor) {
    if (window_ && AppTheme::look() != wantedLook())
        window_.reset();
    if (!window_)
        makeWindow();
    anchor_ = anchor;
    isShown_ = true;
    isDrawn_ = false;
    wasClosedByLastPress_ = false;
    leftAt_.reset();
    frame_->panel().render();
    fit();
    limitInput();
    window_->setAttribute(Qt::WA_KeyboardFocusChange, false);
    // The attribute alone counts only when the window is made.
    window_->setAttribute(Qt::WA_ShowWithoutActivating, isAside_);
    window_->winId();
    window_->windowHandle()->setProperty("_q_showWithoutActivating", isAside_);
    fade(0, 1);
    window_->show();
    window_->raise();
    // It may still be on the screen, fading out.
    window_->update();
    // On no button: a key that was meant for another window would press it.
    frame_->panel().setFocus(Qt::PopupFocusReason);
    presses_ = face_.windows.observePresses([this] { hearPress(); });
}

// Only now the window manager has it among its windows: before, it couldn't bring it to the front,
// and didn't hear which part of it takes presses, so that its frame around the window took all.
void PanelPopover::noteDrawn() {
    if (std::exchange(isDrawn_, true))
        return;
    activation_ = loop_.after(0ms, [this] {
        limitInput();
        face_.windows.keepOffLists(window_->winId());
        if (!isAside_)
            takeKeyboard();
    });
}

void PanelPopover::takeKeyboard() { face_.windows.activate(window_->winId()); }

void PanelPopover::close() {
    if (!std::exchange(isShown_, false))
        return;
    activation_.reset();
    settling_.reset();
    isAside_ = false;
    fade(window_->windowOpacity(), 0);
    if (onClose)
        onClose();
}

void PanelPopover::fade(double from, double to) {
    fade_.stop();
    const bool isPlain = !face_.windows.isCompositing() || face_.appearance.isMotionReduced();
    if (isPlain) {
        window_->setWindowOpacity(1);
        window_->setVisible(to > 0);
        return;
    }
    fade_.setDuration(fadeTime);
    fade_.setStartValue(from);
    fade_.setEndValue(to);
    fade_.setEasingCurve(QEasingCurve::OutQuad);
    window_->setWindowOpacity(from);
    fade_.start();
}

ScreenRect PanelPopover::workArea() const {
    const QPoint place =
        anchor_ ? QPoint(anchor_->x + anchor_->width / 2, anchor_->y + anchor_->height / 2)
                : QCursor::pos();
    const QScreen* screen = QGuiApplication::screenAt(place);
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect area = screen->availableGeometry();
    return {area.x(), area.y(), area.width(), area.height()};
}

void PanelPopover::fit() {
    const ScreenRect room = workArea();
    frame_->fit(mostPopoverHeight(room));
    const PopoverPlace place = placePopover(anchor_, room, frame_->width(), frame_->height());
    const int margin = face_.windows.isCompositing() ? shadowMargin : 0;
    const QRect panel(QPoint(margin, margin), frame_->size());
    const QRect whole(place.x - margin, place.y - margin, panel.width() + 2 * margin,
                      panel.height() + 2 * margin);
    if (window_->isVisible() && window_->geometry() == whole && frame_->pos() == panel.topLeft())
        return;
    frame_->move(panel.topLeft());
    window_->setPanelArea(panel);
    window_->setGeometry(whole);
    applyShape();
    limitInput();
}

void PanelPopover::limitInput() {
    const double scale = window_->devicePixelRatioF();
    const QRect panel = settling_.isSet() ? QRect() : frame_->geometry();
    face_.windows.limitInput(window_->winId(),
                             {qRound(panel.x() * scale), qRound(panel.y() * scale),
                              qRound(panel.width() * scale), qRound(panel.height() * scale)});
}

// Where nothing blends windows, what is transparent would be black.
void PanelPopover::applyShape() {
    if (face_.windows.isCompositing()) {
        window_->clearMask();
        return;
    }
    QPainterPath outline;
    constexpr double radius = AppTheme::windowCornerRadius;
    outline.addRoundedRect(QRectF(QPointF(), QSizeF(frame_->size())), radius, radius);
    window_->setMask(QRegion(outline.toFillPolygon().toPolygon()));
}

void PanelPopover::leaveFocus() {
    // Its own menus and questions come to the front as well.
    const bool isOwn = QApplication::activeWindow() || QApplication::activePopupWidget();
    if (!isShown_ || isOwn || isKept_())
        return;
    close();
    leftAt_ = loop_.uptime();
}

// The press that has moved the keyboard elsewhere is told a little later.
bool PanelPopover::wasClosedByLastPress() const {
    return wasClosedByLastPress_ || (leftAt_ && loop_.uptime() - *leftAt_ < samePress);
}

void PanelPopover::hearPress() {
    if (!isShown_) {
        const bool isSame = leftAt_ && loop_.uptime() - *leftAt_ < samePress;
        leftAt_.reset();
        wasClosedByLastPress_ = isSame;
        if (!isSame)
            presses_.reset();
        return;
    }
    // The user can't have seen it yet.
    if (settling_.isSet())
        return;
    const QPoint pointer = QCursor::pos();
    const QWidget* below = QApplication::topLevelAt(pointer);
    const bool isOther = below && below != window_.get();
    const bool isInside =
        isOther || QApplication::activePopupWidget() || window_->panelOnScreen().contains(pointer);
    // What a press on the icon does is told by the icon.
    const bool isOnIcon =
        anchor_ && anchor_->width > 1 &&
        QRect(anchor_->x, anchor_->y, anchor_->width, anchor_->height).contains(pointer);
    if (isInside || isOnIcon)
        return;
    close();
    wasClosedByLastPress_ = true;
}

} // namespace velmorquit
