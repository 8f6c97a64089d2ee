#pragma once

#include "Platform/SystemLog.h"

namespace velmorquit {

/// Lines on standard error, which a session keeps in its journal. Each is one line there, whatever
/// the names in it hold, and ends with an ellipsis after 2000 characters.
class JournalLog final : public SystemLog {
public:
    void write(std::string_view line) override;
};

} // namespace velmorquit
