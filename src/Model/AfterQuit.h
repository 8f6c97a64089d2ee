#pragma once

#include "Model/PowerAction.h"

namespace velmorquit {

/// What is to follow a run, as whoever asks for one from outside says it.
enum class AfterQuit { nothing, shutDown, restart, logOut };

inline constexpr std::array allAfterQuits{AfterQuit::nothing, AfterQuit::shutDown,
                                          AfterQuit::restart, AfterQuit::logOut};

/// "nothing", "shutDown", "restart" or "logOut".
[[nodiscard]] std::string_view rawValue(AfterQuit choice);
[[nodiscard]] std::optional<AfterQuit> afterQuitFromRaw(std::string_view raw);
[[nodiscard]] PowerAction powerAction(AfterQuit choice);
[[nodiscard]] std::string displayTitle(AfterQuit choice);

} // namespace velmorquit
