#include "Views/ConfirmScheduleView.h"

#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Label.h"
#include "Theme/PillButton.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"

namespace velmorquit {
namespace {

constexpr int postponement = 10; // minutes

} // namespace

ConfirmScheduleView::ConfirmScheduleView(QuitController& controller, QWidget* parent)
    : QWidget(parent), controller_(controller),
      question_(new Label(AppTheme::systemFont(14, QFont::DemiBold), AppTheme::text())) {
    setObjectName(QStringLiteral("ConfirmScheduleView"));
    question_->setObjectName(QStringLiteral("scheduleQuestion"));
    question_->wrap();
    QVBoxLayout& rows = column(*this, 12);
    QHBoxLayout& head = rowIn(rows, 8);
    head.addWidget(new SymbolLabel(QStringLiteral("timer"), 22, AppTheme::warningOrange()));
    auto* texts = new QWidget;
    QVBoxLayout& lines = column(*texts, 2);
    lines.addWidget(question_);
    auto* help = new Label(AppTheme::calloutFont(), AppTheme::text(0.8));
    help->setText(toQt(localized("Senza la tua conferma non si chiude niente. Se un'app ha un "
                                 "documento aperto, ti chiederà di salvarlo.")));
    help->wrap();
    lines.addWidget(help);
    head.addWidget(texts, 1);

    QHBoxLayout& buttons = rowIn(rows, 10);
    const auto add = [&](const char* name, const std::string& text, const QColor& fill,
                         std::function<void()> act) {
        auto* button = new PillButton(toQt(text), fill);
        button->setObjectName(QString::fromLatin1(name));
        connect(button, &QPushButton::clicked, this, std::move(act));
        buttons.addWidget(button, 1);
    };
    add("dropSchedule", localized("Annulla"), AppTheme::veil(0.16),
        [this] { controller_.cancelSchedule(); });
    add("askLater", localized("+10 min"), AppTheme::veil(0.16),
        [this] { controller_.postponeSchedule(postponement); });
    add("confirmSchedule", localized("Conferma"), AppTheme::successGreen(),
        [this] { controller_.confirmScheduledQuit(); });
}

void ConfirmScheduleView::render(PowerAction action) {
    question_->setText(toQt(localized("È ora: %@?", buttonTitle(action))));
}

} // namespace velmorquit
