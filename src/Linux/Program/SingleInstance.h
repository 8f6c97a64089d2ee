#pragma once

#include "Platform/SystemLog.h"

#include <QVariantMap>

#include <optional>
#include <string>

namespace velmorquit {

class BusCommands;

/// How a start goes on.
struct Start {
    std::optional<int> status{};       ///< with which the program is to end
    std::optional<std::string> note{}; ///< what the user has to know otherwise
};

/// Takes the program's name, or asks the process that has it to show itself. Waits for that one, a
/// few seconds at most. `platformData` is what whoever starts the program has handed it.
[[nodiscard]] Start takeOverOrHandOver(BusCommands& commands, SystemLog& log,
                                       const QVariantMap& platformData);

} // namespace velmorquit
