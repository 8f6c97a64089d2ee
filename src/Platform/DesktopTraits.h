#pragma once

namespace velmorquit {

/// Traits of a desktop that matter to the program's icon and windows. They don't change while
/// the program runs.
struct DesktopTraits {
    /// Its panel paints icons that are given by name in the panel's own colours.
    bool tintsNamedIcons = false;

    /// The pointer's position is known everywhere, not only over some windows.
    bool isPointerKnown = true;

    /// The whole screen can be captured, not only some windows.
    bool isScreenReadable = true;
};

} // namespace velmorquit
