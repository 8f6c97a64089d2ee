#include "Views/FloatingWindow.h"

#include "Platform/Appearance.h"
#include "Platform/Screens.h"
#include "Platform/WindowSystem.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRegion>
#include <QWindow>

#include <utility>

namespace velmorquit {
namespace {
constexpr int fadeTime = 140;
} // namespace

FloatingWindow::FloatingWindow(MainLoop& loop, const DesktopFace& face, const Style& style)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::NoDropShadowWindowHint),
      loop_(loop), face_(face), style_(style), fade_(this, "windowOpacity") {
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(QStringLiteral("Velmor Quit"));
    connect(&fade_, &QPropertyAnimation::finished, this, [this] {
        if (!isShown_)
            hide();
    });
    compositing_ = face_.windows.observeCompositing([this] {
        if (content_)
            place(corner_);
    });
    screens_ = face_.screens.observe([this] {
        if (isShown_ && onOtherScreens)
            onOtherScreens();
    });
}

void FloatingWindow::setContent(QWidget& content) {
    content_ = &content;
    content.setParent(this);
}

void FloatingWindow::place(const QPoint& corner) {
    corner_ = corner;
    const int room = face_.windows.isCompositing() ? style_.shadowRoom : 0;
    const QRect whole =
        QRect(corner, content_->size()).marginsAdded(QMargins(room, room, room, room));
    const QPoint within(room, room);
    if (isVisible() && geometry() == whole && content_->pos() == within)
        return;
    content_->move(within);
    setGeometry(whole);
    update();
    cutOut();
    limitInput();
}

void FloatingWindow::appear(Manner manner) {
    const bool isUnbidden = manner == Manner::unbidden;
    isShown_ = true;
    isDrawn_ = false;
    setAttribute(Qt::WA_KeyboardFocusChange, false);
    // By itself the attribute only counts when the window is created.
    setAttribute(Qt::WA_ShowWithoutActivating, isUnbidden);
    winId();
    windowHandle()->setProperty("_q_showWithoutActivating", isUnbidden);
    windowHandle()->installEventFilter(this);
    fade(0, 1);
    show();
    raise();
    // It may still be on the screen, fading out.
    update();
}

void FloatingWindow::vanish() {
    isShown_ = false;
    drawn_.reset();
    fade(windowOpacity(), 0);
}

void FloatingWindow::letPressesThrough(bool isOn) {
    letsPressesThrough_ = isOn;
    limitInput();
}

void FloatingWindow::takeKeyboard() { face_.windows.activate(winId()); }

void FloatingWindow::noteDrawn() {
    if (std::exchange(isDrawn_, true))
        return;
    drawn_ = loop_.after(0ms, [this] {
        face_.windows.keepOffLists(winId());
        if (onDrawn)
            onDrawn();
    });
}

void FloatingWindow::fade(double from, double to) {
    fade_.stop();
    const bool isPlain = !face_.windows.isCompositing() || face_.appearance.isMotionReduced();
    if (isPlain) {
        setWindowOpacity(1);
        setVisible(to > 0);
        return;
    }
    fade_.setDuration(fadeTime);
    fade_.setStartValue(from);
    fade_.setEndValue(to);
    fade_.setEasingCurve(QEasingCurve::OutQuad);
    setWindowOpacity(from);
    fade_.start();
}

void FloatingWindow::limitInput() {
    const double scale = devicePixelRatioF();
    const QRect area = letsPressesThrough_ ? QRect() : content_->geometry();
    face_.windows.limitInput(winId(),
                             {qRound(area.x() * scale), qRound(area.y() * scale),
                              qRound(area.width() * scale), qRound(area.height() * scale)});
}

// Without compositing, transparent areas would be black.
void FloatingWindow::cutOut() {
    if (face_.windows.isCompositing()) {
        clearMask();
        return;
    }
    QPainterPath outline;
    outline.addRoundedRect(QRectF(QPointF(), QSizeF(content_->size())), style_.cornerRadius,
                           style_.cornerRadius);
    setMask(QRegion(outline.toFillPolygon().toPolygon()));
}

bool FloatingWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && onLeave)
        onLeave();
    return QWidget::event(event);
}

// Window managers that put frames around windows note which part takes presses only after taking a
// window in; before that, the frame would take them all. A new window manager starts over.
bool FloatingWindow::eventFilter(QObject* watched, QEvent* event) {
    const auto* handle = qobject_cast<QWindow*>(watched);
    if (event->type() == QEvent::Expose && handle && handle->isExposed())
        limitInput();
    return QWidget::eventFilter(watched, event);
}

void FloatingWindow::paintEvent(QPaintEvent*) {
    noteDrawn();
    if (!face_.windows.isCompositing())
        return;
    QPainter painter(this);
    drawShadow(painter, {content_->geometry(), style_.cornerRadius}, style_.shadow);
}

void FloatingWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape)
        QWidget::keyPressEvent(event);
    else if (onDismiss)
        onDismiss();
}

// Closed by the window manager, or by the keys for that. At the program's end the toolkit closes
// it, and refusing would keep the program from ending.
void FloatingWindow::closeEvent(QCloseEvent* event) {
    if (!event->spontaneous())
        return;
    event->ignore();
    if (onDismiss)
        onDismiss();
}

} // namespace velmorquit
