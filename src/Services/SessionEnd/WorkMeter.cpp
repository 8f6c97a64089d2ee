#include "Services/SessionEnd/WorkMeter.h"

namespace velmorquit {

void WorkMeter::look(Uptime now, const ProcessWork& work) {
    if (!looked_) {
        quietSince_ = now;
    } else {
        const ProcessWork& before = looked_->work;
        const bool isBusy =
            (work.processorTime - before.processorTime) * 100 >=
                (now - looked_->at) * busyPercent ||
            (work.written > before.written && work.written - before.written >= busyBytes);
        busyLooks_ = isBusy ? busyLooks_ + 1 : 0;
        if (isWorking())
            quietSince_ = now;
    }
    looked_ = {now, work};
}

} // namespace velmorquit
