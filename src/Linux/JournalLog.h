#pragma once

#include "Platform/SystemLog.h"

namespace velmorquit {

/// Lines on standard error, which a session keeps in its journal.
class JournalLog final : public SystemLog {
public:
    void write(std::string_view line) override;
};

} // namespace velmorquit
