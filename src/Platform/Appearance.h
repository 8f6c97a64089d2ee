#pragma once

#include "Loop/Handle.h"

#include <functional>

namespace velmorquit {

/// How the user has asked the desktop to look.
///
/// For the main thread, from memory: until the desktop has told, and where it doesn't, nothing is
/// asked for.
class Appearance {
public:
    virtual ~Appearance() = default;

    /// Text and controls are to stand out more than they usually do.
    [[nodiscard]] virtual bool isHighContrast() const = 0;

    /// Nothing is to move that needn't.
    [[nodiscard]] virtual bool isMotionReduced() const = 0;

    /// The desktop is dark.
    [[nodiscard]] virtual bool isDark() const = 0;

    /// Calls `changed` in a later turn whenever one of them changes.
    [[nodiscard]] virtual Handle observe(std::function<void()> changed) const = 0;
};

} // namespace velmorquit
