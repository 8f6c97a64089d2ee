#pragma once

#include "Platform/DesktopTraits.h"

namespace velmorquit {

class Appearance;
class Screens;
class TrayHosts;
class WindowSystem;

/// What the program's own windows and its icon ask of a desktop. Whoever makes it outlives whoever
/// is handed it.
struct DesktopFace {
    WindowSystem& windows;
    const Screens& screens;
    const Appearance& appearance;
    const TrayHosts& trayHosts;
    DesktopTraits traits;
};

} // namespace velmorquit
