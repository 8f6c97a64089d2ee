#include "Theme/SymbolLabel.h"

#include "Theme/AppTheme.h"
#include "Theme/Symbols.h"

#include <QPainter>

namespace velmorquit {

SymbolLabel::SymbolLabel(const QString& name, double textSize, const QColor& colour,
                         QWidget* parent)
    : QWidget(parent), name_(name), colour_(colour),
      size_(Symbols::boxSize(textSize * AppTheme::look().textScale)) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolLabel::setSymbol(const QString& name, const QColor& colour) {
    if (name_ == name && colour_ == colour)
        return;
    name_ = name;
    colour_ = colour;
    update();
}

QSize SymbolLabel::sizeHint() const { return {size_, size_}; }

void SymbolLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    Symbols::draw(painter, name_, rect(), colour_);
}

} // namespace velmorquit
