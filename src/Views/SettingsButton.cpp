#include "Views/SettingsButton.h"

#include "Platform/Preferences.h"
#include "Services/AppUpdater.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Drawing.h"
#include "Theme/Symbols.h"
#include "Views/Layouts.h"

#include <QMenu>
#include <QPainter>

#include <utility>

namespace velmorquit {
namespace {
constexpr int diameter = 30;
constexpr std::string_view clickQuitsAll = "clickIconQuitsAll";
} // namespace

SettingsButton::SettingsButton(Preferences& preferences, AppUpdater& updater, Actions actions,
                               QWidget* parent)
    : QPushButton(parent), preferences_(preferences), updater_(updater),
      actions_(std::move(actions)) {
    setObjectName(QStringLiteral("settings"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    const QString help = toQt(localized("Impostazioni"));
    setToolTip(help);
    setAccessibleName(help);
    connect(this, &QPushButton::clicked, this, [this] { openMenu(); });
}

QSize SettingsButton::sizeHint() const { return {diameter, diameter}; }

void SettingsButton::openMenu() {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* click = menu->addAction(toQt(localized("Clic sull'icona chiude tutto subito")));
    click->setCheckable(true);
    click->setChecked(preferences_.boolean(clickQuitsAll, false));
    connect(click, &QAction::toggled, this,
            [this](bool isOn) { preferences_.set(clickQuitsAll, isOn); });
    menu->addSeparator();
    QAction* updates = menu->addAction(toQt(localized("Controlla aggiornamenti…")));
    updates->setEnabled(updater_.canCheckForUpdates);
    connect(updates, &QAction::triggered, this, [this] { updater_.checkForUpdates(); });
    QAction* exit = menu->addAction(toQt(localized("Esci da Velmor Quit")));
    connect(exit, &QAction::triggered, this, [this] {
        if (actions_.exit)
            actions_.exit();
    });
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
