#pragma once

class QString;
class QWidget;

namespace velmorquit {

/// Sets a widget's tool tip. The toolkit would read some plain texts as markup: names in them are
/// shown unchanged all the same, and screen readers get the text without markup.
void setHelp(QWidget& widget, const QString& text);

} // namespace velmorquit
