#pragma once

#include "Loop/Told.h"
#include "Theme/AppTheme.h"

#include <memory>

namespace velmorquit {

class Appearance;

/// Sets the process's look to the one that the user has asked of the desktop; nobody else sets it.
///
/// Everything on the screen keeps its look, since it would otherwise close under the user's hands.
/// So the look changes only while nobody holds it; widgets with another look have to be recreated.
class LookOwner {
public:
    /// `appearance` must outlive it.
    explicit LookOwner(const Appearance& appearance);
    LookOwner(const LookOwner&) = delete;
    LookOwner& operator=(const LookOwner&) = delete;
    /// Restores the usual look of the process.
    ~LookOwner();

    /// Takes over the requested look, unless somebody holds the present one, and keeps it until the
    /// handle is reset.
    [[nodiscard]] Handle hold();

    /// Calls `changed` when the look has changed.
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
