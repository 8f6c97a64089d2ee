#include "Views/SchedulerCard.h"

#include "Platform/Formats.h"
#include "Services/Panel/CardTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/CheckBox.h"
#include "Theme/Label.h"
#include "Theme/TimeField.h"
#include "Views/Layouts.h"

namespace velmorquit {
namespace {
constexpr ClockTime evening{23, 0};
}

SchedulerCard::SchedulerCard(QuitController& controller, const Formats& formats, QWidget* parent)
    : GlassCard(AppTheme::cardCornerRadius, std::nullopt, parent), controller_(controller),
      formats_(formats), title_(new Label(AppTheme::sectionFont(), AppTheme::text())),
      time_(new TimeField),
      confirm_(new CheckBox(toQt(localized("Chiedi conferma prima di chiudere")))) {
    setObjectName(QStringLiteral("SchedulerCard"));
    title_->setObjectName(QStringLiteral("schedulerTitle"));
    QVBoxLayout& lines = column(*this, 10, allSides(14));
    lines.addWidget(title_);

    QHBoxLayout& spans = rowIn(lines, 6);
    for (const int minutes : presets) {
        auto* button = new PrimaryButton(toQt(CardTexts::preset(minutes)));
        button->setObjectName(QStringLiteral("preset%1").arg(minutes));
        connect(button, &QPushButton::clicked, this, [this, minutes] {
            schedule(controller_.mainLoop().now() + std::chrono::minutes(minutes));
        });
        spans.addWidget(button);
    }
    spans.addStretch();

    QHBoxLayout& clock = rowIn(lines, 8);
    auto* orAt = new Label(AppTheme::calloutFont(), AppTheme::text());
    orAt->setText(toQt(localized("oppure alle")));
    time_->setObjectName(QStringLiteral("time"));
    time_->setAccessibleName(orAt->text());
    auto* set = new PrimaryButton(toQt(localized("Programma")), AppTheme::successGreen());
    set->setObjectName(QStringLiteral("schedule"));
    connect(set, &QPushButton::clicked, this, [this] { schedule(pickedTime()); });
    time_->onReturn = [this] { schedule(pickedTime()); };
    reset();
    clock.addWidget(orAt);
    clock.addWidget(time_);
    clock.addStretch();
    clock.addWidget(set);

    confirm_->setObjectName(QStringLiteral("confirmScheduled"));
    confirm_->setToolTip(toQt(localized("Allo scadere aspetta il tuo «Conferma». Toglila se vuoi "
                                        "che si spenga da solo, per esempio di notte")));
    connect(confirm_, &QCheckBox::clicked, this,
            [this](bool isOn) { controller_.chooseConfirmScheduled(isOn); });
    lines.addWidget(confirm_);
    auto* note = new Label(AppTheme::captionFont(), AppTheme::text(0.7));
    note->setText(toQt(localized("Fino ad allora il Mac non va in stop da solo. In alto a destra "
                                 "vedi il conto alla rovescia.")));
    note->wrap();
    lines.addWidget(note);
}

void SchedulerCard::render() {
    title_->setText(toQt(localized("%@ tra…", scheduleTitle(controller_.afterQuit))));
    confirm_->setChecked(controller_.confirmScheduled);
}

void SchedulerCard::reset() { time_->setTime(QTime(evening.hour, evening.minute)); }

WallTime SchedulerCard::pickedTime() const {
    const QTime time = time_->time();
    return formats_.nextOccurrence({time.hour(), time.minute()}, controller_.mainLoop().now());
}

void SchedulerCard::schedule(WallTime date) {
    controller_.scheduleQuit(date, controller_.afterQuit);
    if (onScheduled)
        onScheduled();
}

} // namespace velmorquit
