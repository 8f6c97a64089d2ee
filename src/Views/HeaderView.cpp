#include "Views/HeaderView.h"

#include "Services/AppUpdater.h"
#include "Services/Panel/PanelTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Label.h"
#include "Views/IconView.h"
#include "Views/Layouts.h"
#include "Views/SettingsButton.h"

#include <utility>

namespace velmorquit {

HeaderView::HeaderView(QuitController& controller, AppUpdater& updater,
                       std::function<Menu()> settingsMenu, QWidget* parent)
    : QWidget(parent), controller_(controller), updater_(updater),
      count_(new Label(AppTheme::captionFont(), AppTheme::text(0.75))),
      update_(new PrimaryButton(toQt(localized("Aggiorna")), AppTheme::successGreen())) {
    QHBoxLayout& line = row(*this, 10);
    line.addWidget(new IconView(34));
    auto* texts = new QWidget;
    QVBoxLayout& lines = column(*texts, 1);
    auto* title = new Label(AppTheme::titleFont(), AppTheme::text());
    title->setText(QStringLiteral("Velmor Quit"));
    count_->setObjectName(QStringLiteral("appCount"));
    lines.addWidget(title);
    lines.addWidget(count_);
    line.addWidget(texts, 1);
    update_->setObjectName(QStringLiteral("update"));
    update_->setSymbol(QStringLiteral("arrow.down.circle.fill"));
    update_->setToolTip(toQt(localized("È disponibile una nuova versione di Velmor Quit")));
    connect(update_, &QPushButton::clicked, this, [this] { updater_.checkForUpdates(); });
    line.addWidget(update_);
    line.addWidget(new SettingsButton(std::move(settingsMenu)));
}

void HeaderView::render() {
    count_->setText(toQt(PanelTexts::appCount(controller_)));
    update_->setVisible(updater_.updateAvailable);
}

} // namespace velmorquit
