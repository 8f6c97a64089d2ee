#include "Views/EndCard.h"

#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Label.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"

namespace velmorquit {

EndCard::EndCard(MainLoop& loop, LoginWindow& loginWindow, QWidget* parent)
    : GlassCard(AppTheme::cardCornerRadius, AppTheme::warningOrange(), parent),
      loginWindow_(loginWindow), question_(loop, loginWindow, readingTime),
      title_(new Label(AppTheme::sectionFont(), AppTheme::text())),
      text_(new Label(AppTheme::captionFont(), AppTheme::text(0.85))),
      cancel_(new PrimaryButton(QString())),
      anyway_(new PrimaryButton(QString(), AppTheme::dangerRed())) {
    onCancel = [this] { loginWindow_.cancel(); };
    setObjectName(QStringLiteral("EndCard"));
    title_->setObjectName(QStringLiteral("endTitle"));
    title_->wrap();
    text_->setObjectName(QStringLiteral("endText"));
    text_->wrap();
    cancel_->setObjectName(QStringLiteral("cancelEnd"));
    anyway_->setObjectName(QStringLiteral("endAnyway"));
    QVBoxLayout& lines = column(*this, 8, allSides(12));
    QHBoxLayout& head = rowIn(lines, 6);
    head.addWidget(new SymbolLabel(QStringLiteral("power"), 12, AppTheme::warningOrange()), 0,
                   Qt::AlignTop);
    head.addWidget(title_, 1);
    lines.addWidget(text_);
    QHBoxLayout& buttons = rowIn(lines, 8);
    buttons.addWidget(cancel_);
    buttons.addStretch();
    buttons.addWidget(anyway_);
    connect(cancel_, &QPushButton::clicked, this, [this] {
        question_.giveUp();
        onCancel();
    });
    connect(anyway_, &QPushButton::clicked, this, [this] { pressAnyway(); });
}

void EndCard::render() {
    const EndState& state = loginWindow_.state;
    question_.follow();
    const bool isAsked = question_.isAsked();
    const std::string text = isAsked ? EndTexts::anywayText(state) : EndTexts::text(state);
    const bool isOver =
        state.stage == EndState::Stage::refused || state.stage == EndState::Stage::failed;
    title_->setText(
        toQt(isAsked ? EndTexts::anywayQuestion(state.request) : EndTexts::title(state)));
    text_->setText(toQt(text));
    text_->setVisible(!text.empty());
    cancel_->setVisible(state.stage != EndState::Stage::underWay);
    cancel_->setText(toQt(isOver && !isAsked ? localized("Ho capito") : localized("Annulla")));
    cancel_->updateGeometry();
    anyway_->setText(toQt(EndTexts::anyway(state.request)));
    anyway_->updateGeometry();
    anyway_->setVisible(state.canBeForced);
}

void EndCard::pressAnyway() {
    if (question_.isAsked()) {
        question_.confirm();
    } else {
        question_.ask();
        cancel_->setFocus();
    }
    render();
}

} // namespace velmorquit
