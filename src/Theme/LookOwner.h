#pragma once

#include "Loop/Told.h"
#include "Theme/AppTheme.h"

#include <memory>

namespace velmorquit {

class Appearance;

/// Gives the process the look that the user has asked the desktop for, and nobody else does.
///
/// What is on the screen keeps its look: it would close under the user's hands. So the look changes
/// only while nobody holds it, and what was made with another one is to be made anew.
class LookOwner {
public:
    /// What it is handed outlives it.
    explicit LookOwner(const Appearance& appearance);
    LookOwner(const LookOwner&) = delete;
    LookOwner& operator=(const LookOwner&) = delete;
    /// The process has the usual look again.
    ~LookOwner();

    /// Takes over what is asked for, where nobody holds the look, and keeps it until the handle is
    /// reset.
    [[nodiscard]] Handle hold();

    /// Calls `changed` when the look has become another.
    [[nodiscard]] Handle observe(std::function<void()> changed) {
        return changes_.hear(std::move(changed));
    }

private:
    struct Holders final : Handle::Source {
        void cancel(std::uint64_t) noexcept override { --count; }
        int count = 0;
    };

    void takeOver();

    const Appearance& appearance_;
    std::shared_ptr<Holders> holders_ = std::make_shared<Holders>();
    Told<> changes_;
    Handle desktopChanges_;
};

} // namespace velmorquit
