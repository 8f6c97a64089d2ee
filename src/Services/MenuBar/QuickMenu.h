#pragma once

#include "Model/PowerAction.h"
#include "Platform/Formats.h"

#include <string>
#include <vector>

namespace velmorquit {

class AppUpdater;
class LoginWindow;
class QuitController;

/// One line of the icon's menu.
struct QuickMenuEntry {
    enum class Command {
        none,   ///< a line between two groups
        remark, ///< says something about those before it
        quit,
        reopen,
        cancelSchedule,
        cancelEnd, ///< of the session, which is about to come
        checkForUpdates,
        openPanel,
        exit,
    };

    Command command = Command::none;
    std::string title;
    std::string symbol; ///< its name; empty where there is none
    bool isEnabled = true;
    PowerAction then = PowerAction::none; ///< what follows, with `quit`
    char key = 0; ///< with Control it chooses the entry while the menu is open; 0 for none

    friend bool operator==(const QuickMenuEntry&, const QuickMenuEntry&) = default;
};

using QuickMenu = std::vector<QuickMenuEntry>;

/// The menu for what is true now.
[[nodiscard]] QuickMenu quickMenu(const QuitController& controller, const LoginWindow& loginWindow,
                                  const AppUpdater& updater, const Formats& formats);

} // namespace velmorquit
