#pragma once

#include "Platform/LoginWindow.h"
#include "Platform/RunningApplication.h"
#include "Platform/Workspace.h"

#include <optional>
#include <string_view>

/// The names by which other processes know the desktop's values. Unknown names are read as the
/// neutral value.
namespace velmorquit {

/// Empty for `unknown`.
[[nodiscard]] std::string_view rawValue(StayReason reason);
[[nodiscard]] StayReason stayReasonFromRaw(std::string_view raw);

[[nodiscard]] std::string_view rawValue(Sight sight);
/// `all` for any other text: earlier versions don't say how much they see.
[[nodiscard]] Sight sightFromRaw(std::string_view raw);

[[nodiscard]] std::string_view rawValue(LoginRequest request);
[[nodiscard]] std::optional<LoginRequest> loginRequestFromRaw(std::string_view raw);

[[nodiscard]] std::string_view rawValue(EndState::Stage stage);
/// `none` for any other text.
[[nodiscard]] EndState::Stage endStageFromRaw(std::string_view raw);

[[nodiscard]] std::string_view rawValue(EndObstacle::Kind kind);
/// `unknown` for any other text.
[[nodiscard]] EndObstacle::Kind obstacleKindFromRaw(std::string_view raw);

} // namespace velmorquit
