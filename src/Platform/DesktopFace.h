#pragma once

#include "Platform/DesktopTraits.h"

namespace velmorquit {

class Appearance;
class Screens;
class TrayHosts;
class WindowSystem;

/// All that the program's own windows and its icon need from a desktop. The members must outlive
/// every user of it.
struct DesktopFace {
    WindowSystem& windows;
    const Screens& screens;
    const Appearance& appearance;
    const TrayHosts& trayHosts;
    DesktopTraits traits;
};

} // namespace velmorquit
