#pragma once

#include "Model/AppTexts.h"
#include "Platform/Formats.h"
#include "Platform/RunningApplication.h"
#include "Services/QuitController/QuitController.h"

#include <optional>
#include <string>
#include <string_view>

/// The panel's texts, in the interface's language, and the names of the symbols beside them.
namespace velmorquit::PanelTexts {

/// How many applications are open, excluded ones among them.
[[nodiscard]] std::string appCount(const QuitController& controller);

/// Shown in place of an empty list. It says that nothing is open only if all windows can be
/// seen.
[[nodiscard]] std::string emptyList(Sight sight);

/// Says that a run would close nothing.
[[nodiscard]] std::string nothingToQuit(Sight sight);

/// The line below the round button.
struct StatusLine {
    enum class Kind {
        quiet,    ///< there is nothing to do
        ordinary, ///< what a run would close, or what one is doing
        result,   ///< what the run that has just ended has done
    };

    Kind kind = Kind::ordinary;
    std::string text;
    std::optional<std::string> badge; ///< how much memory came free; none when none did
    std::optional<std::string> note;  ///< a remark on the result

    friend bool operator==(const StatusLine&, const StatusLine&) = default;
};

[[nodiscard]] StatusLine statusLine(const QuitController& controller, const Formats& formats);

/// "11,24 GB di 16 GB".
[[nodiscard]] std::string memory(const MemoryMonitor::SystemMemory& memory, const Formats& formats);

/// Tooltips of a row of the list, and of its button.
[[nodiscard]] std::string rowHelp(const OpenApp& app, bool isExcluded);
[[nodiscard]] std::string rowQuitHelp(const OpenApp& app);

/// Why an application that was asked to quit is still open; a guess where nobody knows.
using velmorquit::stayHelp;
[[nodiscard]] std::string forceHelp(const OpenApp& app);

/// Symbols in the list of choices, and in the round button.
[[nodiscard]] std::string_view choiceSymbol(PowerAction action);
[[nodiscard]] std::string_view buttonSymbol(PowerAction action);

} // namespace velmorquit::PanelTexts
