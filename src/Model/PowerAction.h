#pragma once

#include "Platform/LoginWindow.h"
#include "Platform/SystemLog.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace velmorquit {

/// What happens to the computer when everything is closed.
enum class PowerAction { none, shutDown, restart, logOut };

inline constexpr std::array allPowerActions{PowerAction::none, PowerAction::shutDown,
                                            PowerAction::restart, PowerAction::logOut};

/// The text under which the choice is stored: "none", "shutDown", "restart" or "logOut".
[[nodiscard]] std::string_view rawValue(PowerAction action);

/// The choice stored as `raw`; none for any other text, different letter case included.
[[nodiscard]] std::optional<PowerAction> powerActionFromRaw(std::string_view raw);

/// Caption of the button that closes everything.
[[nodiscard]] std::string buttonTitle(PowerAction action);

/// Short name of the choice.
[[nodiscard]] std::string label(PowerAction action);

/// One sentence on what the choice does.
[[nodiscard]] std::string helpText(PowerAction action);

/// What the choice asks of the session; none for `none`.
[[nodiscard]] std::optional<LoginRequest> loginRequest(PowerAction action);

/// Asks for what the choice says; for `none` nothing is asked. True when the request was taken,
/// else the log has a line.
bool perform(PowerAction action, const EndTerms& terms, LoginWindow& loginWindow, SystemLog& log);

/// Title of a quit that is scheduled with this choice.
[[nodiscard]] std::string scheduleTitle(PowerAction action);

} // namespace velmorquit
