#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velmorquit {

/// Characters of a name on the screen, and of a sentence or a reason that somebody else has
/// written.
inline constexpr std::size_t longestShownName = 80;
inline constexpr std::size_t longestShownText = 300;

/// What others wrote (a title, a label, a message) as it may stand in a text of ours: valid UTF-8
/// on one line, without anything that a terminal obeys, that turns the order of letters around or
/// that nobody sees. Blanks and control characters become one blank, bytes that are no UTF-8 become
/// U+FFFD, and of the marks on one letter only the first few are kept. What joins the letters of a
/// script or the parts of an emoji stays. Longer than `most` characters it ends with an ellipsis.
///
/// For the eye only: different texts may look the same, so nothing may be known by it.
[[nodiscard]] std::string shownText(std::string_view text, std::size_t most = longestShownText);

/// The same for a name. Empty when nothing of it can be seen.
[[nodiscard]] std::string shownName(std::string_view name);

/// The same for a text that is laid out in lines, for a terminal: line feeds and blanks stay as
/// they are.
[[nodiscard]] std::string shownLines(std::string_view text);

/// JSON in which all that `shownText` would leave out is escaped instead, so that a terminal can
/// show it and a program still reads the same.
[[nodiscard]] std::string shownJson(std::string_view json);

} // namespace velmorquit
