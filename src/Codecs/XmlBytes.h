#pragma once

#include <QString>
#include <string>
#include <string_view>

/// Texts may contain bytes that XML forbids: control characters and invalid UTF-8. For the XML
/// reader each of them becomes a character that nobody uses, from U+10F000 on.
namespace velmorquit::XmlBytes {

/// `bytes` with only characters that XML allows; a byte order mark at the start is removed.
[[nodiscard]] QString shown(std::string_view bytes);

/// The bytes from which `shown` made this text.
[[nodiscard]] std::string hidden(const QString& text);

} // namespace velmorquit::XmlBytes
