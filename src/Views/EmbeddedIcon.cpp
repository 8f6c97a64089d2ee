#include "Views/EmbeddedIcon.h"

#include "Platform/TrayHosts.h"

#include <QMouseEvent>
#include <QPainter>

namespace velmorquit {

// By this name, Qt's window system recognises a window that must adapt to the tray: with a visual
// that blends with what lies behind it, or else drawn over the panel's background.
EmbeddedIcon::EmbeddedIcon(const TrayHosts& hosts)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint) {
    constexpr int usualSide = 22;
    setObjectName(QStringLiteral("QSystemTrayIconSys"));
    setToolTip(QStringLiteral("Velmor Quit"));
    setAccessibleName(toolTip());
    setAttribute(Qt::WA_AlwaysShowToolTips);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_TranslucentBackground);
    setMinimumSize(usualSide, usualSide);
    setGeometry(0, 0, usualSide, usualSide);
    hosts.takeIn(winId());
    show();
}

void EmbeddedIcon::setIcon(const QIcon& icon) {
    icon_ = icon;
    update();
}

QRect EmbeddedIcon::place() const { return {mapToGlobal(QPoint(0, 0)), size()}; }

void EmbeddedIcon::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        tell(QSystemTrayIcon::Trigger);
    else if (event->button() == Qt::RightButton)
        tell(QSystemTrayIcon::Context);
}

void EmbeddedIcon::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        tell(QSystemTrayIcon::DoubleClick);
}

void EmbeddedIcon::tell(QSystemTrayIcon::ActivationReason reason) const {
    if (onPress)
        onPress(reason);
}

void EmbeddedIcon::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    icon_.paint(&painter, rect());
}

} // namespace velmorquit
