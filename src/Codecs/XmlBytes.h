#pragma once

#include <QString>
#include <string>
#include <string_view>

/// Texts may hold what XML forbids: control characters and bytes that are no UTF-8. For the XML
/// reader each of these bytes becomes a character that nobody uses, from U+10F000 on.
namespace velmorquit::XmlBytes {

/// `bytes` with only characters that XML allows; a mark of the byte order at the start is gone.
[[nodiscard]] QString shown(std::string_view bytes);

/// The bytes of which `shown` made this.
[[nodiscard]] std::string hidden(const QString& text);

} // namespace velmorquit::XmlBytes
