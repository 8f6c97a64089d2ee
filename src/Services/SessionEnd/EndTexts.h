#pragma once

#include "Platform/LoginWindow.h"

#include <string>
#include <vector>

/// Texts about the end of the session, in the interface's language.
namespace velmorquit::EndTexts {

/// What is about to happen, or what failed to happen.
[[nodiscard]] std::string title(const EndState& state);

/// What the end is waiting for, what it names, or why it doesn't come; empty without any of them.
[[nodiscard]] std::string text(const EndState& state);

/// Title and text as one line, for a terminal.
[[nodiscard]] std::string line(const EndState& state);

/// Caption of the cancel button where it stands alone.
[[nodiscard]] std::string cancelTitle(LoginRequest request);

/// The obstacles by name, with a remark on each.
[[nodiscard]] std::string list(const std::vector<EndObstacle>& obstacles);

/// Caption of the button that passes over the obstacles, the question that follows it, and what is
/// at stake.
[[nodiscard]] std::string anyway(LoginRequest request);
[[nodiscard]] std::string anywayQuestion(LoginRequest request);
[[nodiscard]] std::string anywayText(const EndState& state);

/// Why a session isn't ended while some of its windows can't be seen: with `canAsk` the session's
/// manager could ask, but the user may be away; without it nobody could ask.
[[nodiscard]] std::string unseen(bool canAsk);

/// A warning before a request is made; empty when none is needed.
[[nodiscard]] std::string outlook(EndOutlook outlook);
/// The same in a few words, for a menu.
[[nodiscard]] std::string shortOutlook(EndOutlook outlook);

} // namespace velmorquit::EndTexts
