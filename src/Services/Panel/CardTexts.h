#pragma once

#include "Model/PowerAction.h"
#include "Model/SavedApp.h"
#include "Platform/Formats.h"
#include "Services/ExternalDrives.h"
#include "Services/TimeMachine.h"

#include <optional>
#include <string>
#include <vector>

/// Texts of the panel's cards, in the interface's language.
namespace velmorquit::CardTexts {

/// A span offered for a schedule: "15 min", "1 ora", "2 ore".
[[nodiscard]] std::string preset(int minutes);

/// The time left until a moment, rounded up: "tra 42 s", "tra 59 min", "tra 1 h 24 min". Zero once
/// the moment has passed.
[[nodiscard]] std::string remaining(Duration left);

/// With less time than this left, a schedule becomes urgent and stays so.
inline constexpr Duration urgency = 60s;

/// A backup older than this counts as old.
inline constexpr Duration freshBackup = 7 * 24h;

struct LastBackup {
    std::string text;
    bool isStale = false; ///< it is old, or there is none
};
[[nodiscard]] LastBackup lastBackup(const TimeMachine::Info& info, const Formats& formats,
                                    WallTime now);

[[nodiscard]] std::string backupHelp(const TimeMachine::Info& info);
[[nodiscard]] std::string ejectHelp(const std::vector<ExternalDrives::Drive>& drives);

/// The progress as far as it can be shown: not a number counts as none.
[[nodiscard]] std::optional<double> shownFraction(std::optional<double> fraction);
/// "42 %", halves rounded up.
[[nodiscard]] std::string percentage(double fraction);

/// Caption of the button that passes over a failed backup.
[[nodiscard]] std::string continueTitle(PowerAction runningAction);
/// How soon the failed backup is passed over without an answer.
[[nodiscard]] std::string continuesIn(Duration left);

[[nodiscard]] std::string reopenTitle(std::size_t count);
/// The names, with commas.
[[nodiscard]] std::string names(const std::vector<SavedApp>& apps);
/// The names of closed applications that can't be reopened; empty without any.
[[nodiscard]] std::string notReopenable(const std::vector<std::string>& names);

} // namespace velmorquit::CardTexts
