#include "Views/BackupCard.h"

#include "Services/Panel/CardTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Label.h"
#include "Theme/Marks.h"
#include "Theme/ProgressTrack.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"

namespace velmorquit {

BackupCard::BackupCard(QuitController& controller, QWidget* parent)
    : GlassCard(AppTheme::cardCornerRadius, std::nullopt, parent), controller_(controller),
      track_(new ProgressTrack(AppTheme::successMark())),
      progress_(new Label(AppTheme::captionFont(), AppTheme::text(0.8))),
      afterwards_(new Label(AppTheme::captionFont(), AppTheme::text(0.8))) {
    setObjectName(QStringLiteral("BackupCard"));
    progress_->setObjectName(QStringLiteral("backupProgress"));
    progress_->setFigures(Figures::tabular);
    afterwards_->setObjectName(QStringLiteral("afterBackup"));
    QVBoxLayout& lines = column(*this, 10, allSides(14));
    QHBoxLayout& head = rowIn(lines, 6);
    head.addWidget(new SymbolLabel(QStringLiteral("clock.arrow.circlepath"), 14, AppTheme::text()));
    auto* title = new Label(AppTheme::sectionFont(), AppTheme::text());
    title->setText(toQt(localized("Backup Time Machine in corso")));
    head.addWidget(title, 1);
    lines.addWidget(track_);
    lines.addWidget(progress_);
    lines.addWidget(afterwards_);
    addWarning(lines, localized("Non staccare il disco di Time Machine."));

    QHBoxLayout& buttons = rowIn(lines, 8);
    auto* cancel = new PrimaryButton(toQt(localized("Annulla")));
    cancel->setObjectName(QStringLiteral("cancelBackup"));
    cancel->setToolTip(toQt(localized("Ferma il backup e non spegnere né riavviare")));
    connect(cancel, &QPushButton::clicked, this,
            [this] { controller_.stopBackup(QuitController::BackupStop::cancel); });
    auto* skip = new PrimaryButton(toQt(localized("Salta backup")));
    skip->setObjectName(QStringLiteral("skipBackup"));
    skip->setToolTip(
        toQt(localized("Ferma il backup e prosegui. Time Machine riprende la prossima volta")));
    connect(skip, &QPushButton::clicked, this,
            [this] { controller_.stopBackup(QuitController::BackupStop::skip); });
    buttons.addWidget(cancel);
    buttons.addStretch();
    buttons.addWidget(skip);
}

void BackupCard::render(std::optional<double> fraction) {
    const auto shown = CardTexts::shownFraction(fraction);
    track_->setFraction(shown);
    progress_->setText(
        toQt(shown ? CardTexts::percentage(*shown) : localized("Time Machine si sta preparando…")));
    const PowerAction action = controller_.runningAction;
    afterwards_->setVisible(action != PowerAction::none);
    afterwards_->setText(toQt(localized("Al termine: %@", label(action))));
}

} // namespace velmorquit
