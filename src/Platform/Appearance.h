#pragma once

#include "Loop/Handle.h"

#include <functional>

namespace velmorquit {

/// The user's wishes for how the desktop looks.
///
/// For the main thread, from memory: all false until the desktop has told, or where it doesn't
/// tell.
class Appearance {
public:
    virtual ~Appearance() = default;

    /// Text and controls should stand out more than usual.
    [[nodiscard]] virtual bool isHighContrast() const = 0;

    /// Avoid all unnecessary motion.
    [[nodiscard]] virtual bool isMotionReduced() const = 0;

    /// The desktop uses dark colours.
    [[nodiscard]] virtual bool isDark() const = 0;

    /// Calls `changed` in a later turn whenever any of these changes.
    [[nodiscard]] virtual Handle observe(std::function<void()> changed) const = 0;
};

} // namespace velmorquit
