#pragma once

#include "Linux/Files/Descriptor.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <functional>
#include <optional>

namespace velmorquit {

/// Turns the signals that ask the program to end (SIGTERM, SIGINT) into a call on the main loop.
/// There is one at a time. A signal that was ignored when the program started stays ignored.
///
/// Handlers, unlike blocked or ignored signals, are not inherited by the programs that are started
/// from here.
class EndSignals {
public:
    /// From now on such signals are remembered until the loop runs.
    EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;
    ~EndSignals();

    /// Called each time the loop finds such signals, however many.
    std::function<void()> onAsked;

private:
    void hear() const;

    Descriptor event_;
    std::optional<QSocketNotifier> notifier_;
    std::array<std::optional<struct sigaction>, 2> former_;
};

} // namespace velmorquit
