#pragma once

#include "Platform/RunningApplication.h"
#include "Platform/Workspace.h"

#include <string>

/// Sentences about applications and drives that several speakers share, in the interface's
/// language.
namespace velmorquit {

/// The application's name with the reason why it stays, for a list in a sentence; the name alone
/// when none is known.
[[nodiscard]] std::string nameWithReason(const std::string& name, StayReason reason);

/// Why it stays, for the column of a table.
[[nodiscard]] std::string stayRemark(StayReason reason);

/// Why it stays, as a sentence.
[[nodiscard]] std::string stayHelp(StayReason reason);

/// Why there may be more than can be seen, as a sentence; empty where everything is seen.
[[nodiscard]] std::string unseenHelp(Sight sight);

/// How many drives are gone.
[[nodiscard]] std::string ejectedText(int count);

} // namespace velmorquit
