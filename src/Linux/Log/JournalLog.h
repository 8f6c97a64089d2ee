#pragma once

#include "Platform/SystemLog.h"

namespace velmorquit {

/// Lines on standard error, which a session keeps in its journal. Each remains one line there,
/// whatever the names in it contain, and ends with an ellipsis after 2000 characters. All lines of
/// a process share one limit (`LineLimit`); after an omission the next line tells how many were
/// left out. From any thread.
class JournalLog final : public SystemLog {
public:
    void write(std::string_view line) override;

    /// Whether there is room for a line that somebody else writes; it then counts as written.
    [[nodiscard]] static bool isRoomForLine();
};

} // namespace velmorquit
