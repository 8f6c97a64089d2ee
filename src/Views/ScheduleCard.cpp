#include "Views/ScheduleCard.h"

#include "Platform/Formats.h"
#include "Services/Panel/CardTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Label.h"
#include "Theme/SymbolLabel.h"
#include "Views/ConfirmScheduleView.h"
#include "Views/Layouts.h"

namespace velmorquit {
namespace {

const QString symbolName = QStringLiteral("timer");
constexpr int postponement = 10; // minutes

} // namespace

ScheduleCard::ScheduleCard(QuitController& controller, const Formats& formats, QWidget* parent)
    : GlassCard(AppTheme::cardCornerRadius, std::nullopt, parent), controller_(controller),
      formats_(formats), countdown_(new QWidget), question_(new ConfirmScheduleView(controller)),
      symbol_(new SymbolLabel(symbolName, 22, AppTheme::text())),
      title_(new Label(AppTheme::captionFont(QFont::DemiBold), AppTheme::text(0.8))),
      time_(new Label(AppTheme::systemFont(24, QFont::Bold), AppTheme::text())),
      remaining_(new Label(AppTheme::captionFont(), AppTheme::text(0.75))) {
    setObjectName(QStringLiteral("ScheduleCard"));
    QVBoxLayout& states = column(*this, 0);
    makeCountdown();
    states.addWidget(countdown_);
    states.addWidget(question_);
    question_->setContentsMargins(allSides(14));
}

void ScheduleCard::makeCountdown() {
    countdown_->setToolTip(toQt(localized("Se un'app chiede di salvare un documento, Velmor Quit "
                                          "aspetta e il Mac resta acceso.")));
    title_->setObjectName(QStringLiteral("scheduleTitle"));
    time_->setObjectName(QStringLiteral("scheduleTime"));
    remaining_->setObjectName(QStringLiteral("remaining"));
    time_->setFigures(Figures::tabular);
    remaining_->setFigures(Figures::tabular);

    QHBoxLayout& line = row(*countdown_, 12, allSides(12));
    line.addWidget(symbol_);
    auto* texts = new QWidget;
    QVBoxLayout& lines = column(*texts, 4);
    lines.addWidget(title_);
    lines.addWidget(time_);
    lines.addWidget(remaining_);
    line.addWidget(texts, 1);
    auto* buttons = new QWidget;
    QVBoxLayout& stack = column(*buttons, 6);
    auto* later = new PrimaryButton(toQt(localized("+10 min")));
    later->setObjectName(QStringLiteral("postpone"));
    later->setToolTip(toQt(localized("Rimanda di 10 minuti")));
    setFocusProxy(later);
    connect(later, &QPushButton::clicked, this,
            [this] { controller_.postponeSchedule(postponement); });
    auto* cancel = new PrimaryButton(toQt(localized("Annulla")));
    cancel->setObjectName(QStringLiteral("cancelSchedule"));
    connect(cancel, &QPushButton::clicked, this, [this] { controller_.cancelSchedule(); });
    stack.addWidget(later, 0, Qt::AlignRight);
    stack.addWidget(cancel, 0, Qt::AlignRight);
    line.addWidget(buttons);
}

void ScheduleCard::render() {
    const std::optional<ScheduledQuit>& schedule = controller_.schedule;
    if (!schedule)
        return;
    const bool isAsking = controller_.awaitingConfirmation;
    countdown_->setVisible(!isAsking);
    question_->setVisible(isAsking);
    question_->render(schedule->action);
    title_->setText(toQt(scheduleTitle(schedule->action)));
    time_->setText(toQt(formats_.shortTime(schedule->date)));
    renderRemaining();
}

void ScheduleCard::renderRemaining() {
    const std::optional<ScheduledQuit>& schedule = controller_.schedule;
    if (!schedule)
        return;
    const Duration left = schedule->date - controller_.mainLoop().now();
    const bool isUrgent = left <= CardTexts::urgency;
    const bool isOrange = isUrgent || controller_.awaitingConfirmation;
    setTint(isOrange ? std::optional(AppTheme::warningOrange()) : std::nullopt);
    symbol_->setSymbol(symbolName, isUrgent ? AppTheme::warningOrange() : AppTheme::text());
    remaining_->setColour(isUrgent ? AppTheme::warningOrange() : AppTheme::text(0.75));
    remaining_->setText(toQt(CardTexts::remaining(left)));
}

void ScheduleCard::showEvent(QShowEvent*) {
    ticks_ = controller_.mainLoop().every(1s, [this] { renderRemaining(); });
}

void ScheduleCard::hideEvent(QHideEvent*) { ticks_.reset(); }

} // namespace velmorquit
