#pragma once

#include "Platform/SystemLog.h"

namespace velmorquit {

/// Lines on standard error, which a session keeps in its journal. Each is one line there, whatever
/// the names in it hold, and ends with an ellipsis after 2000 characters. All that a process writes
/// there has one limit (`LineLimit`); where lines were left out the next one says how many. From
/// any thread.
class JournalLog final : public SystemLog {
public:
    void write(std::string_view line) override;

    /// Whether a line that somebody else writes has room, which counts as written then.
    [[nodiscard]] static bool isRoomForLine();
};

} // namespace velmorquit
