#include "Linux/Log/LineLimit.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

bool LineLimit::takes(Uptime now) {
    const Uptime owed = std::max(owedUntil_, now) + interval;
    if (owed - now > most * interval) {
        ++lost_;
        return false;
    }
    owedUntil_ = owed;
    return true;
}

unsigned long LineLimit::takeLost() { return std::exchange(lost_, 0); }

} // namespace velmorquit
