#pragma once

#include "Model/AfterQuit.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

enum class ActionKind { quitAll, scheduleQuit, cancelSchedule, reopenApps, memory };

/// An action with its parameters; those that it doesn't have are ignored.
struct ActionRequest {
    ActionKind kind = ActionKind::quitAll;
    AfterQuit then = AfterQuit::nothing;
    int minutes = 30;
};

/// An action that the program offers to other programs, such as launchers. All texts are in the
/// interface's language.
struct ActionDescription {
    struct Number {
        std::string title;
        int fallback = 0;
        int lowest = 0;
        int highest = 0;
    };
    struct Choice {
        std::string title;
        AfterQuit fallback = AfterQuit::nothing;
    };

    ActionKind kind;
    std::string name; ///< published under this name, such as "quit-all"
    std::string title;
    std::optional<Number> minutes;
    std::optional<Choice> then;
    /// The action with its parameters in one sentence: `%1$@` is the minutes where there are any,
    /// the last placeholder what follows. Empty without parameters.
    std::string summary;
    std::vector<std::string> phrases; ///< by which the user asks for it
    std::string shortTitle;
    std::string symbol; ///< name of its picture
};

/// All actions, in the order in which they are offered.
[[nodiscard]] std::vector<ActionDescription> allActions();

/// The action that is published under that name, its parameters as they are by default.
[[nodiscard]] std::optional<ActionRequest> actionNamed(std::string_view name);

/// Why the request's parameters can't be taken; none when they can.
[[nodiscard]] std::optional<std::string> problemOf(const ActionRequest& request);

} // namespace velmorquit
