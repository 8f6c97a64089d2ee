#include "Theme/Help.h"

#include <QTextDocument>
#include <QWidget>

namespace velmorquit {

void setHelp(QWidget& widget, const QString& text) {
    widget.setToolTip(
        Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text);
    // Each time that it is set, those who read the screen are told.
    if (widget.accessibleDescription() != text)
        widget.setAccessibleDescription(text);
}

} // namespace velmorquit
