#pragma once

#include "Loop/Handle.h"
#include "Loop/Time.h"

#include <functional>

namespace velmorquit {

/// Events of the clocks.
enum class ClockEvent {
    woke,     ///< the computer was asleep: the wall clock went on, running time did not
    corrected ///< somebody has set the wall clock
};

/// The one thread on which all state lives, and its clocks.
///
/// Every operation is called on that thread and returns at once; every callback is called on it.
class MainLoop {
public:
    virtual ~MainLoop() = default;

    /// The time by the wall clock.
    [[nodiscard]] virtual WallTime now() const = 0;

    /// Running time now, in which waits, grace periods and deadlines of polls are measured.
    [[nodiscard]] virtual Uptime uptime() const = 0;

    /// Calls `work` in a later turn of the loop, in the order of posting.
    virtual void post(std::function<void()> work) = 0;

    /// Calls `work` once, when `delay` of running time has passed, never before the next turn.
    /// Timers due at the same instant are called in the order in which they were armed.
    [[nodiscard]] virtual Handle after(Duration delay, std::function<void()> work) = 0;

    /// Calls `work` at every multiple of `interval` (more than zero) from now on. A loop that was
    /// held up calls it only once for all the multiples it has missed.
    [[nodiscard]] virtual Handle every(Duration interval, std::function<void()> work) = 0;

    /// Calls `told` after each event of that kind, before any timer that is due by then. Where the
    /// system doesn't tell, a change of the clock may be missed.
    [[nodiscard]] virtual Handle observe(ClockEvent event, std::function<void()> told) = 0;

    /// Calls `work` on another thread, then posts `done`. `work` must own all that it touches:
    /// resetting the handle doesn't interrupt it, but only prevents the call of `done`.
    [[nodiscard]] virtual Handle background(std::function<void()> work,
                                            std::function<void()> done) = 0;
};

} // namespace velmorquit
