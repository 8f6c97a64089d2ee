#include "Views/SettingsButton.h"

#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"
#include "Theme/Symbols.h"
#include "Views/Layouts.h"
#include "Views/MenuView.h"

#include <QPainter>

#include <utility>

namespace velmorquit {
namespace {
constexpr int diameter = 30;
} // namespace

SettingsButton::SettingsButton(std::function<Menu()> makeMenu, QWidget* parent)
    : QPushButton(parent), makeMenu_(std::move(makeMenu)) {
    setObjectName(QStringLiteral("settings"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    const QString help = toQt(localized("Impostazioni"));
    setToolTip(help);
    setAccessibleName(help);
    connect(this, &QPushButton::clicked, this, [this] { openMenu(); });
}

QSize SettingsButton::sizeHint() const { return {diameter, diameter}; }

void SettingsButton::openMenu() {
    QMenu* menu = makeMenu(makeMenu_(), this).release();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    constexpr int gap = 4;
    menu->popup(mapToGlobal(QPoint(width() - menu->sizeHint().width(), height() + gap)));
}

void SettingsButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = rect();
    fillRounded(painter, area, diameter / 2.0, AppTheme::veil(isDown() ? 0.28 : 0.15));
    strokeInside(painter, area, diameter / 2.0, AppTheme::line(0.35));
    const double side = Symbols::boxSize(13);
    Symbols::draw(painter, QStringLiteral("gearshape.fill"),
                  {(diameter - side) / 2, (diameter - side) / 2, side, side}, AppTheme::text());
    if (showsFocus(*this))
        drawFocus(painter, area, diameter / 2.0);
}

} // namespace velmorquit
