#include "Views/ExtrasRow.h"

#include "Services/Panel/CardTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Chip.h"
#include "Theme/Label.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"

namespace velmorquit {
namespace {
/// How often the age of the last backup is updated.
constexpr Duration ageingInterval = 30s;
} // namespace

ExtrasRow::ExtrasRow(QuitController& controller, const Formats& formats, QWidget* parent)
    : QWidget(parent), controller_(controller), formats_(formats),
      backup_(new Chip(toQt(localized("Time Machine")), QStringLiteral("clock.arrow.circlepath"))),
      eject_(new Chip(toQt(localized("Espelli dischi")), QStringLiteral("eject"))),
      scheduler_(new Chip(toQt(localized("Programma")), QStringLiteral("timer"))),
      lastBackup_(new QWidget),
      lastBackupSymbol_(new SymbolLabel(QString(), 11, AppTheme::successMark())),
      lastBackupText_(new Label(AppTheme::captionFont(), AppTheme::text(0.8))) {
    setObjectName(QStringLiteral("ExtrasRow"));
    backup_->setObjectName(QStringLiteral("backupFirst"));
    eject_->setObjectName(QStringLiteral("ejectDrives"));
    scheduler_->setObjectName(QStringLiteral("showScheduler"));
    lastBackup_->setObjectName(QStringLiteral("lastBackupLine"));
    lastBackupText_->setObjectName(QStringLiteral("lastBackup"));

    QVBoxLayout& lines = column(*this, 6);
    QHBoxLayout& chips = rowIn(lines, 6);
    for (Chip* chip : {backup_, eject_, scheduler_})
        chips.addWidget(chip, 1);
    QHBoxLayout& line = row(*lastBackup_, 5, {4, 0, 4, 0});
    line.addWidget(lastBackupSymbol_);
    line.addWidget(lastBackupText_, 1);
    lines.addWidget(lastBackup_);

    connect(backup_, &QPushButton::clicked, this,
            [this] { controller_.chooseBackupFirst(!controller_.backupFirst); });
    connect(eject_, &QPushButton::clicked, this,
            [this] { controller_.chooseEjectDrives(!controller_.ejectDrives); });
    connect(scheduler_, &QPushButton::clicked, this, [this] {
        if (onToggleScheduler)
            onToggleScheduler();
    });
}

void ExtrasRow::render(bool showsScheduler) {
    const TimeMachine::Info& info = controller_.timeMachine;
    const bool isSet = controller_.schedule->has_value();
    backup_->render(controller_.backupFirst && info.isConfigured, info.isConfigured,
                    toQt(CardTexts::backupHelp(info)));
    eject_->render(controller_.ejectDrives, true,
                   toQt(CardTexts::ejectHelp(controller_.externalDrives)));
    scheduler_->render(showsScheduler || isSet, !isSet,
                       toQt(localized("Chiude le app (e spegne, se scelto) a un'ora stabilita")));
    lastBackup_->setVisible(controller_.backupFirst && info.isConfigured);
    renderLastBackup();
}

void ExtrasRow::renderLastBackup() {
    const CardTexts::LastBackup last =
        CardTexts::lastBackup(controller_.timeMachine, formats_, controller_.mainLoop().now());
    lastBackupSymbol_->setSymbol(last.isStale ? QStringLiteral("exclamationmark.circle.fill")
                                              : QStringLiteral("checkmark.circle.fill"),
                                 last.isStale ? AppTheme::warningOrange()
                                              : AppTheme::successMark());
    lastBackupText_->setText(toQt(last.text));
}

void ExtrasRow::showEvent(QShowEvent*) {
    ageing_ = controller_.mainLoop().every(ageingInterval, [this] { renderLastBackup(); });
}

void ExtrasRow::hideEvent(QHideEvent*) { ageing_.reset(); }

} // namespace velmorquit
