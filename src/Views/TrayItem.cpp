#include "Views/TrayItem.h"

#include "Platform/Appearance.h"
#include "Platform/Screens.h"
#include "Platform/TrayHosts.h"
#include "Views/MenuBarIcon.h"
#include "Views/ScreenGround.h"

#include <QGuiApplication>
#include <QStandardPaths>

#include <chrono>
#include <utility>

namespace velmorquit {

namespace {

/// A panel needs a moment to embed the icon and paint itself: the first look is after this time,
/// the next after twice as long, and so on.
constexpr std::chrono::milliseconds firstLook{100};
constexpr std::chrono::milliseconds lastLook{800};
/// Around the pointer at a click, within the smallest icon.
constexpr int lookReach = 8;

QString installedName() {
    const QString name = MenuBarIcon::themedName();
    const QString file = QStringLiteral("icons/hicolor/symbolic/apps/%1.svg").arg(name);
    const bool isInstalled =
        !QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty();
    return isInstalled ? name : QString();
}

} // namespace

TrayItem::TrayItem(const DesktopFace& face) : face_(face) {
    looks_.setSingleShot(true);
    QObject::connect(&looks_, &QTimer::timeout, &looks_, [this] {
        look();
        const auto next = 2 * looks_.intervalAsDuration();
        if (next <= lastLook)
            looks_.start(next);
    });
    hostChanges_ = face_.trayHosts.observe([this] { remake(); });
    appearanceChanges_ = face_.appearance.observe([this] {
        paint();
        lookLater();
    });
    remake();
}

TrayItem::~TrayItem() = default;

void TrayItem::remake() {
    const TrayHost host = face_.trayHosts.present();
    icon_.reset();
    embedded_.reset();
    kept_.reset();
    clickedAt_.reset();
    isGroundDark_.reset();
    if (host == TrayHost::none)
        return;
    const auto heard = [this](QSystemTrayIcon::ActivationReason reason) { hear(reason); };
    if (host == TrayHost::embedding) {
        embedded_ = std::make_unique<EmbeddedIcon>(face_.trayHosts);
        embedded_->onPress = heard;
        paint();
    } else {
        icon_ = std::make_unique<QSystemTrayIcon>();
        icon_->setToolTip(QStringLiteral("Velmor Quit"));
        QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(), heard);
        kept_ = std::make_unique<KeptMenu>();
        kept_->setEntries(entries_);
        kept_->onOpen = [this] { noteMenu(); };
        icon_->setContextMenu(&kept_->menu());
        paint();
        icon_->show();
    }
    lookLater();
}

// If the pointer is only known over some windows, a panel isn't one of them.
void TrayItem::noteClick() {
    if (face_.traits.isPointerKnown)
        clickedAt_ = pointer();
    else
        noteMenu();
}

// Some panels ask for the menu before anybody has clicked.
void TrayItem::noteMenu() {
    if (const auto place = ScreenGround::pointerInPanel(face_.screens))
        clickedAt_ = place;
}

void TrayItem::hear(QSystemTrayIcon::ActivationReason reason) {
    using Button = Click::Button;
    noteClick();
    look();
    const bool isRight = reason == QSystemTrayIcon::Context;
    // A double click is the second press of two quick ones.
    const bool isLeft =
        reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick;
    // If Qt embeds the icon all the same, it has already opened the kept menu itself.
    const bool isAnswered = isRight && kept_ && geometry().isValid();
    if (!onClick || (!isLeft && !isRight) || isAnswered)
        return;
    const bool isControlHeld =
        QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier);
    onClick({.button = isRight ? Button::right : Button::left, .isControlHeld = isControlHeld});
}

QPoint TrayItem::pointer() const {
    const ScreenPoint place = turned(face_.screens.pointer());
    return {place.x, place.y};
}

// An icon that isn't embedded yet is at the origin.
QRect TrayItem::geometry() const {
    const QRect place = embedded_ ? embedded_->place() : icon_ ? icon_->geometry() : QRect();
    return place.topLeft() == QPoint(0, 0) ? QRect() : place;
}

std::optional<ScreenRect> TrayItem::frame() const {
    const QRect place = geometry();
    if (place.isValid())
        return ScreenRect{place.x(), place.y(), place.width(), place.height()};
    if (clickedAt_)
        return ScreenRect{clickedAt_->x(), clickedAt_->y(), 1, 1};
    return std::nullopt;
}

void TrayItem::popUp(const Menu& menu) {
    closeMenu();
    open_ = makeMenu(menu);
    QObject::connect(open_.get(), &QMenu::aboutToHide, open_.get(), [this] { closeMenu(); });
    const auto place = frame();
    if (!place) {
        open_->popup(pointer());
        return;
    }
    const QRect icon(place->x, place->y, place->width, place->height);
    const QPoint middle = icon.center();
    const ScreenRect screen =
        turned(face_.screens.at(turned(ScreenPoint{middle.x(), middle.y()})).frame);
    const bool hangs = middle.y() <= screen.y + screen.height / 2;
    open_->popup(hangs ? icon.bottomLeft() + QPoint(0, 1)
                       : icon.topLeft() - QPoint(0, open_->sizeHint().height()));
}

// In a later turn, since the chosen entry is told after the menu has gone from the screen.
void TrayItem::closeMenu() {
    if (open_)
        open_.release()->deleteLater();
}

void TrayItem::keepMenu(const Menu& menu) {
    entries_ = menu;
    if (kept_)
        kept_->setEntries(entries_);
}

void TrayItem::lookLater() { looks_.start(firstLook); }

// A host that draws the icon itself doesn't tell its place: it is where it was clicked, and before
// that somewhere in a panel.
QRect TrayItem::ground() const {
    const QRect place = geometry();
    if (place.isValid() || (!icon_ && !embedded_))
        return place;
    if (!clickedAt_)
        return ScreenGround::panel(face_.screens);
    return QRect(*clickedAt_, QSize(1, 1)).adjusted(-lookReach, -lookReach, lookReach, lookReach);
}

void TrayItem::look() {
    if (!face_.traits.isScreenReadable)
        return;
    const auto isDark = ScreenGround::isDark(ground());
    if (!isDark || isGroundDark_ == isDark)
        return;
    isGroundDark_ = isDark;
    paint();
}

bool TrayItem::isPanelDark() const {
    if (isGroundDark_)
        return *isGroundDark_;
    // A panel that tints icons matches the rest of the desktop; others are mostly dark in any
    // case.
    return face_.traits.tintsNamedIcons ? face_.appearance.isDark() : true;
}

void TrayItem::paint() {
    const QString name = face_.traits.tintsNamedIcons ? installedName() : QString();
    const QIcon drawn = MenuBarIcon::icon(isPanelDark() ? Qt::white : Qt::black, name);
    if (embedded_)
        embedded_->setIcon(drawn);
    else if (icon_)
        icon_->setIcon(drawn);
}

} // namespace velmorquit
