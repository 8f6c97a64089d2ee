#include "Views/FooterView.h"

#include "Theme/AppTheme.h"
#include "Theme/Label.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"

namespace velmorquit {

FooterView::FooterView(QWidget* parent)
    : QWidget(parent), line_(new Label(AppTheme::captionFont(), AppTheme::text(0.7))) {
    line_->setObjectName(QStringLiteral("macLine"));
    QHBoxLayout& texts = row(*this, 6);
    texts.addWidget(new SymbolLabel(QStringLiteral("laptopcomputer"), 11, AppTheme::text(0.7)));
    texts.addWidget(line_, 1);
}

void FooterView::setMacLine(const std::string& line) { line_->setText(toQt(line)); }

} // namespace velmorquit
