#pragma once

#include "Model/PowerAction.h"
#include "Platform/Formats.h"
#include "Services/MenuBar/Menu.h"

#include <functional>

namespace velmorquit {

class AppUpdater;
class LoginWindow;
class QuitController;

/// What the entries of the icon's menu do.
struct QuickMenuActions {
    std::function<void(PowerAction then)> quit;
    std::function<void()> reopen;
    std::function<void()> cancelSchedule;
    std::function<void()> cancelEnd; ///< cancels the end of the session that is about to come
    std::function<void()> checkForUpdates;
    std::function<void()> openPanel;
    std::function<void()> exit;
};

/// The icon's menu for the present state.
[[nodiscard]] Menu quickMenu(const QuitController& controller, const LoginWindow& loginWindow,
                             const AppUpdater& updater, const Formats& formats,
                             const QuickMenuActions& actions);

} // namespace velmorquit
