#include "Views/EndCard.h"

#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Label.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"

#include <utility>

namespace velmorquit {

EndCard::EndCard(MainLoop& loop, LoginWindow& loginWindow, QWidget* parent)
    : GlassCard(AppTheme::cardCornerRadius, AppTheme::warningOrange(), parent), loop_(loop),
      loginWindow_(loginWindow), title_(new Label(AppTheme::sectionFont(), AppTheme::text())),
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
        isAsking_ = false;
        onCancel();
    });
    connect(anyway_, &QPushButton::clicked, this, [this] { pressAnyway(); });
}

void EndCard::render() {
    const EndState& state = loginWindow_.state;
    isAsking_ = isAsking_ && state.canBeForced;
    if (std::exchange(askedList_, state.list) != state.list)
        askedAt_ = loop_.uptime();
    const std::string text = isAsking_ ? EndTexts::anywayText(state) : EndTexts::text(state);
    const bool isOver =
        state.stage == EndState::Stage::refused || state.stage == EndState::Stage::failed;
    title_->setText(
        toQt(isAsking_ ? EndTexts::anywayQuestion(state.request) : EndTexts::title(state)));
    text_->setText(toQt(text));
    text_->setVisible(!text.empty());
    cancel_->setVisible(state.stage != EndState::Stage::underWay);
    cancel_->setText(toQt(isOver && !isAsking_ ? localized("Ho capito") : localized("Annulla")));
    cancel_->updateGeometry();
    anyway_->setText(toQt(EndTexts::anyway(state.request)));
    anyway_->updateGeometry();
    anyway_->setVisible(state.canBeForced);
}

// The first press asks. A second one that comes before anybody can have read the question, or the
// names that have just changed in it, is a double click or bad luck.
void EndCard::pressAnyway() {
    if (!isAsking_) {
        isAsking_ = true;
        askedAt_ = loop_.uptime();
        cancel_->setFocus();
    } else if (loop_.uptime() - askedAt_ >= readingTime && loginWindow_.endAnyway(askedList_)) {
        isAsking_ = false;
    }
    render();
}

} // namespace velmorquit
