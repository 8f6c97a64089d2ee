#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velmorquit {

/// The longest name on the screen, and the longest sentence or reason from another program, in
/// characters.
inline constexpr std::size_t longestShownName = 80;
inline constexpr std::size_t longestShownText = 300;

/// Text of others (a title, a label, a message), made fit for our own texts: valid UTF-8 on one
/// line, without terminal controls and without characters that are invisible or change the
/// direction of writing. Blanks and control characters become one blank, invalid bytes U+FFFD, and
/// only the first few marks on a letter are kept. Joiners within scripts and emoji stay. If it is
/// longer than `most` characters it ends with an ellipsis.
///
/// For display only: different texts may look the same, so nothing may be identified by it.
[[nodiscard]] std::string shownText(std::string_view text, std::size_t most = longestShownText);

/// The same for a name. Empty if nothing of it is visible.
[[nodiscard]] std::string shownName(std::string_view name);

/// The same for a text laid out in lines, for a terminal: line feeds and blanks stay as they
/// are.
[[nodiscard]] std::string shownLines(std::string_view text);

/// JSON with escapes for everything that `shownText` would leave out, so that a terminal can show
/// it and programs still read the same.
[[nodiscard]] std::string shownJson(std::string_view json);

} // namespace velmorquit
