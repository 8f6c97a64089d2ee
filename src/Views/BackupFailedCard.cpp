#include "Views/BackupFailedCard.h"

#include "Services/Panel/CardTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Label.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"

namespace velmorquit {

BackupFailedCard::BackupFailedCard(QuitController& controller, QWidget* parent)
    : GlassCard(AppTheme::cardCornerRadius, AppTheme::warningOrange(), parent),
      controller_(controller), reason_(new Label(AppTheme::captionFont(), AppTheme::text(0.85))),
      countdown_(new Label(AppTheme::captionFont(), AppTheme::text(0.75))),
      goOn_(new PrimaryButton(QString(), AppTheme::successGreen())) {
    setObjectName(QStringLiteral("BackupFailedCard"));
    reason_->setObjectName(QStringLiteral("failureReason"));
    reason_->wrap();
    countdown_->setObjectName(QStringLiteral("continuesIn"));
    countdown_->setFigures(Figures::tabular);
    goOn_->setObjectName(QStringLiteral("continue"));
    QVBoxLayout& lines = column(*this, 10, allSides(14));
    QHBoxLayout& head = rowIn(lines, 6);
    head.addWidget(new SymbolLabel(QStringLiteral("exclamationmark.triangle.fill"), 14,
                                   AppTheme::warningOrange()));
    auto* title = new Label(AppTheme::sectionFont(), AppTheme::warningOrange());
    title->setText(toQt(localized("Backup non riuscito")));
    head.addWidget(title, 1);
    lines.addWidget(reason_);
    lines.addWidget(countdown_);

    QHBoxLayout& buttons = rowIn(lines, 8);
    auto* cancel = new PrimaryButton(toQt(localized("Annulla")));
    cancel->setObjectName(QStringLiteral("stopAfterFailure"));
    cancel->setToolTip(toQt(localized("Non spegnere e non riavviare")));
    connect(cancel, &QPushButton::clicked, this,
            [this] { controller_.resolveBackupFailure(QuitController::FailureChoice::stop); });
    connect(goOn_, &QPushButton::clicked, this,
            [this] { controller_.resolveBackupFailure(QuitController::FailureChoice::goOn); });
    buttons.addWidget(cancel);
    buttons.addStretch();
    buttons.addWidget(goOn_);
}

void BackupFailedCard::render(const std::string& reason) {
    reason_->setText(toQt(reason));
    goOn_->setText(toQt(CardTexts::continueTitle(controller_.runningAction)));
    goOn_->updateGeometry();
    renderCountdown();
}

void BackupFailedCard::renderCountdown() {
    const std::optional<WallTime>& at = controller_.autoContinueAt;
    countdown_->setVisible(at.has_value());
    if (at)
        countdown_->setText(toQt(CardTexts::continuesIn(*at - controller_.mainLoop().now())));
}

void BackupFailedCard::showEvent(QShowEvent*) {
    ticks_ = controller_.mainLoop().every(1s, [this] { renderCountdown(); });
}

void BackupFailedCard::hideEvent(QHideEvent*) { ticks_.reset(); }

} // namespace velmorquit
