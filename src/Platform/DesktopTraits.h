#pragma once

namespace velmorquit {

/// What a desktop is like, as far as the program's icon and windows have to know. It stays so for
/// as long as the program runs.
struct DesktopTraits {
    /// Its panel paints icons that it knows by name in the panel's own colours.
    bool tintsNamedIcons = false;

    /// The pointer's place is known wherever the pointer is, and not only over some windows.
    bool isPointerKnown = true;

    /// What the screen shows can be read, and not only what some windows show.
    bool isScreenReadable = true;
};

} // namespace velmorquit
