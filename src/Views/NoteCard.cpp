#include "Views/NoteCard.h"

#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Label.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"

namespace velmorquit {

NoteCard::NoteCard(QWidget* parent)
    : GlassCard(AppTheme::noteCornerRadius, AppTheme::warningOrange(), parent),
      text_(new Label(AppTheme::captionFont(), AppTheme::text())) {
    setObjectName(QStringLiteral("NoteCard"));
    text_->setObjectName(QStringLiteral("note"));
    text_->wrap();
    QHBoxLayout& line = row(*this, 8, allSides(10));
    line.addWidget(
        new SymbolLabel(QStringLiteral("info.circle.fill"), 11, AppTheme::warningOrange()), 0,
        Qt::AlignTop);
    line.addWidget(text_, 1, Qt::AlignTop);
    auto* dismiss = new SymbolButton(QStringLiteral("xmark"), 10, AppTheme::text(), 2,
                                     toQt(localized("Chiudi l'avviso")));
    dismiss->setObjectName(QStringLiteral("dismissNote"));
    connect(dismiss, &QPushButton::clicked, this, [this] {
        if (onDismiss)
            onDismiss();
    });
    line.addWidget(dismiss, 0, Qt::AlignTop);
}

void NoteCard::render(const std::string& text) { text_->setText(toQt(text)); }

} // namespace velmorquit
