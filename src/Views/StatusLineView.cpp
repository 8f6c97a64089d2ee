#include "Views/StatusLineView.h"

#include "Theme/AppTheme.h"
#include "Theme/Marks.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"

namespace velmorquit {

StatusLineView::StatusLineView(QWidget* parent)
    : QWidget(parent),
      check_(new SymbolLabel(QStringLiteral("checkmark.circle.fill"), 12, AppTheme::successMark())),
      text_(new Label(AppTheme::calloutFont(), AppTheme::text())),
      badge_(new Badge(QString(), successBadge())),
      note_(new Label(AppTheme::captionFont(), AppTheme::text(0.8))) {
    text_->setObjectName(QStringLiteral("status"));
    badge_->setObjectName(QStringLiteral("freed"));
    note_->setObjectName(QStringLiteral("resultNote"));
    note_->setAlignment(Qt::AlignHCenter);
    note_->wrap();

    constexpr int leastHeight = 22;
    QVBoxLayout& lines = column(*this, 3);
    auto* main = new QWidget;
    main->setMinimumHeight(leastHeight);
    QHBoxLayout& line = row(*main, 6);
    line.addStretch();
    line.addWidget(check_);
    line.addWidget(text_);
    line.addWidget(badge_);
    line.addStretch();
    line.setAlignment(badge_, Qt::AlignVCenter);
    lines.addWidget(main);
    lines.addWidget(note_);
}

void StatusLineView::render(const PanelTexts::StatusLine& line) {
    using Kind = PanelTexts::StatusLine::Kind;
    const bool isResult = line.kind == Kind::result;
    check_->setVisible(isResult);
    text_->setFont(AppTheme::calloutFont(isResult ? QFont::DemiBold : QFont::Normal));
    text_->setColour(AppTheme::text(isResult ? 1 : line.kind == Kind::quiet ? 0.75 : 0.85));
    text_->setText(toQt(line.text));
    badge_->setVisible(line.badge.has_value());
    badge_->setText(toQt(line.badge.value_or(std::string())));
    note_->setVisible(line.note.has_value());
    note_->setText(toQt(line.note.value_or(std::string())));
}

} // namespace velmorquit
