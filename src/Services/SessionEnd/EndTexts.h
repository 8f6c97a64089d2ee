#pragma once

#include "Platform/LoginWindow.h"

#include <string>
#include <vector>

/// What is said of the end of the session, in the interface's language.
namespace velmorquit::EndTexts {

/// What is to come, or what didn't.
[[nodiscard]] std::string title(const EndState& state);

/// What it waits for, what it names, or why it doesn't come; empty when there is nothing to say.
[[nodiscard]] std::string text(const EndState& state);

/// Title and text as one line, for a terminal.
[[nodiscard]] std::string line(const EndState& state);

/// Caption of what cancels it, where it stands alone.
[[nodiscard]] std::string cancelTitle(LoginRequest request);

/// The obstacles by name, with what is to be known of each.
[[nodiscard]] std::string list(const std::vector<EndObstacle>& obstacles);

/// Caption of the button that passes over the obstacles, the question that follows it, and what is
/// at stake.
[[nodiscard]] std::string anyway(LoginRequest request);
[[nodiscard]] std::string anywayQuestion(LoginRequest request);
[[nodiscard]] std::string anywayText(const EndState& state);

/// Why a session is not ended of which not all windows can be seen: whoever could ask its user is
/// there, but no user, or nobody could ask.
[[nodiscard]] std::string unseen(bool canAsk);

/// What is to be said before a request is made; empty when there is nothing.
[[nodiscard]] std::string outlook(EndOutlook outlook);
/// The same in a few words, for a menu.
[[nodiscard]] std::string shortOutlook(EndOutlook outlook);

} // namespace velmorquit::EndTexts
