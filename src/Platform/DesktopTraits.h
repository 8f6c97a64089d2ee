#pragma once

namespace velmorquit {

/// The traits of a desktop that the program's icon and windows have to know. They stay so for
/// as long as the program runs.
struct DesktopTraits {
    /// Its panel paints icons that it knows by name in the panel's own colours.
    bool tintsNamedIcons = false;

    /// The pointer's place is known wherever the pointer is, and not only over some windows.
    bool isPointerKnown = true;

    /// The whole screen can be read, and not only some windows.
    bool isScreenReadable = true;
};

} // namespace velmorquit
