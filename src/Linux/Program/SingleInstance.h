#pragma once

#include "Platform/SystemLog.h"

#include <QVariantMap>

#include <optional>
#include <string>

namespace velmorquit {

class BusCommands;

/// How the start proceeds.
struct Start {
    std::optional<int> status{};       ///< the program is to exit with it
    std::optional<std::string> note{}; ///< what the user must know if it goes on
};

/// Takes the program's name, or asks the process that has it to show itself and waits for that, a
/// few seconds at most. `platformData` comes from whatever starts the program.
[[nodiscard]] Start takeOverOrHandOver(BusCommands& commands, SystemLog& log,
                                       const QVariantMap& platformData);

} // namespace velmorquit
