#pragma once

#include "Services/MenuBar/Menu.h"

#include <functional>

namespace velmorquit {

class AppUpdater;
class Settings;

/// The menu of settings, showing their present values. Both must outlive the menu.
[[nodiscard]] Menu settingsMenu(Settings& settings, AppUpdater& updater,
                                std::function<void()> exit);

} // namespace velmorquit
