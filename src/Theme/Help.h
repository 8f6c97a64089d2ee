#pragma once

class QString;
class QWidget;

namespace velmorquit {

/// Gives a widget its tool tip. The toolkit takes a tool tip that looks like it for markup: a name
/// in it is shown as it is, and readers of the screen get the text without any.
void setHelp(QWidget& widget, const QString& text);

} // namespace velmorquit
