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

/// The choice stored as `raw`; none for any other text, another letter case included.
[[nodiscard]] std::optional<PowerAction> powerActionFromRaw(std::string_view raw);

/// Caption of the button that closes everything.
[[nodiscard]] std::string buttonTitle(PowerAction action);

/// Short name of the choice.
[[nodiscard]] std::string label(PowerAction action);

/// One sentence on the effect of the choice.
[[nodiscard]] std::string helpText(PowerAction action);

/// The request to the session that the choice stands for; none for `none`.
[[nodiscard]] std::optional<LoginRequest> loginRequest(PowerAction action);

/// Makes the request of the choice; none for `none`. True when it was taken, else there is a line
/// in the log.
bool perform(PowerAction action, const EndTerms& terms, LoginWindow& loginWindow, SystemLog& log);

/// Title of a quit that is scheduled with this choice.
[[nodiscard]] std::string scheduleTitle(PowerAction action);

} // namespace velmorquit
