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
/// Handlers, unlike a blocked or ignored signal, are not passed on to the programs that are started
/// from here.
class EndSignals {
public:
    /// From here on such a signal is remembered until the loop runs.
    EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;
    ~EndSignals();

    /// Called for each time that the loop comes round to such signals.
    std::function<void()> onAsked;

private:
    void hear() const;

    Descriptor event_;
    std::optional<QSocketNotifier> notifier_;
    std::array<std::optional<struct sigaction>, 2> former_;
};

} // namespace velmorquit
