#pragma once

#include "Loop/Handle.h"
#include "Loop/Time.h"

#include <functional>

namespace velmorquit {

/// What happens to the clocks.
enum class ClockEvent {
    woke,     ///< the computer was asleep: the clock on the wall went on, running time did not
    corrected ///< somebody has set the clock on the wall
};

/// The one thread on which all state lives, and its clocks.
///
/// Every operation is called on that thread and returns at once; every callback is called on it.
class MainLoop {
public:
    virtual ~MainLoop() = default;

    /// What the clock on the wall says now.
    [[nodiscard]] virtual WallTime now() const = 0;

    /// Running time now: what waits, grace periods and deadlines of polls are measured in.
    [[nodiscard]] virtual Uptime uptime() const = 0;

    /// Calls `work` in a later turn of the loop; what was posted first is called first.
    virtual void post(std::function<void()> work) = 0;

    /// Calls `work` once, when `delay` of running time has passed, never before the next turn.
    /// Timers due at the same instant are called in the order in which they were armed.
    [[nodiscard]] virtual Handle after(Duration delay, std::function<void()> work) = 0;

    /// Calls `work` at every multiple of `interval` (more than zero) from now on. A loop that was
    /// held up calls it once for all the multiples that it missed.
    [[nodiscard]] virtual Handle every(Duration interval, std::function<void()> work) = 0;

    /// Calls `told` after each event of that kind, before any timer that is due by then. That
    /// somebody has set the clock may be missed where the system doesn't tell.
    [[nodiscard]] virtual Handle observe(ClockEvent event, std::function<void()> told) = 0;

    /// Calls `work` on another thread, then posts `done`. `work` owns all that it touches: it is
    /// not interrupted when the handle is reset, only `done` is then not called any more.
    [[nodiscard]] virtual Handle background(std::function<void()> work,
                                            std::function<void()> done) = 0;
};

} // namespace velmorquit
