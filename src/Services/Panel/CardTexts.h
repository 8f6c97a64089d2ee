#pragma once

#include "Model/PowerAction.h"
#include "Model/SavedApp.h"
#include "Platform/Formats.h"
#include "Services/ExternalDrives.h"
#include "Services/TimeMachine.h"

#include <optional>
#include <string>
#include <vector>

/// What the panel's cards say, in the interface's language.
namespace velmorquit::CardTexts {

/// A span offered for a schedule: "15 min", "1 ora", "2 ore".
[[nodiscard]] std::string preset(int minutes);

/// What is left until a moment, rounded up: "tra 42 s", "tra 59 min", "tra 1 h 24 min". Nothing is
/// left of a moment that has passed.
[[nodiscard]] std::string remaining(Duration left);

/// So near its moment a schedule is urgent, and so it stays.
inline constexpr Duration urgency = 60s;

/// Beyond that a backup is an old one.
inline constexpr Duration freshBackup = 7 * 24h;

struct LastBackup {
    std::string text;
    bool isStale = false; ///< it is old, or there is none
};
[[nodiscard]] LastBackup lastBackup(const TimeMachine::Info& info, const Formats& formats,
                                    WallTime now);

[[nodiscard]] std::string backupHelp(const TimeMachine::Info& info);
[[nodiscard]] std::string ejectHelp(const std::vector<ExternalDrives::Drive>& drives);

/// The progress that can be shown: a number that is none is as good as none at all.
[[nodiscard]] std::optional<double> shownFraction(std::optional<double> fraction);
/// "42 %", halves rounded up.
[[nodiscard]] std::string percentage(double fraction);

/// Caption of the button that passes over a failed backup.
[[nodiscard]] std::string continueTitle(PowerAction runningAction);
/// When that happens by itself.
[[nodiscard]] std::string continuesIn(Duration left);

[[nodiscard]] std::string reopenTitle(std::size_t count);
/// The names, with commas.
[[nodiscard]] std::string names(const std::vector<SavedApp>& apps);
/// What was closed beside them and doesn't come back; empty when there are no such names.
[[nodiscard]] std::string notReopenable(const std::vector<std::string>& names);

} // namespace velmorquit::CardTexts
