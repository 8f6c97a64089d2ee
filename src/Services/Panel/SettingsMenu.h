#pragma once

#include "Services/MenuBar/Menu.h"

#include <functional>

namespace velmorquit {

class AppUpdater;
class Settings;

/// The menu of what can be set, for what is so now. Both outlive its lines.
[[nodiscard]] Menu settingsMenu(Settings& settings, AppUpdater& updater,
                                std::function<void()> exit);

} // namespace velmorquit
