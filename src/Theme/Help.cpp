#include "Theme/Help.h"

#include <QTextDocument>
#include <QWidget>

namespace velmorquit {

void setHelp(QWidget& widget, const QString& text) {
    widget.setToolTip(
        Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text);
    // Screen readers are notified each time it is set.
    if (widget.accessibleDescription() != text)
        widget.setAccessibleDescription(text);
}

} // namespace velmorquit
