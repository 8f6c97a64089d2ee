#pragma once

#include "Services/AppUpdater.h"

namespace velmorquit {

/// Finds what a test says.
struct FindingUpdater : AppUpdater {
    using AppUpdater::AppUpdater;
    using AppUpdater::publish;
};

} // namespace velmorquit
