#pragma once

#include "Model/PowerAction.h"

namespace velmorquit {

/// What follows a run, in the words of requests from outside.
enum class AfterQuit { nothing, shutDown, restart, logOut };

inline constexpr std::array allAfterQuits{AfterQuit::nothing, AfterQuit::shutDown,
                                          AfterQuit::restart, AfterQuit::logOut};

/// "nothing", "shutDown", "restart" or "logOut".
[[nodiscard]] std::string_view rawValue(AfterQuit choice);
[[nodiscard]] std::optional<AfterQuit> afterQuitFromRaw(std::string_view raw);
[[nodiscard]] PowerAction powerAction(AfterQuit choice);
[[nodiscard]] std::string displayTitle(AfterQuit choice);

} // namespace velmorquit
