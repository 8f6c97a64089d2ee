#pragma once

#include "Linux/Loop/Paced.h"
#include "Linux/X11/X11Connection.h"

#include <QSocketNotifier>

#include <functional>

namespace velmorquit {

/// Hands on the events of a connection as they come, no more of them in one turn of the loop than
/// leave time for everything else.
class X11EventReader {
public:
    /// The connection must outlive it. `onEnd` is called once, when the server has gone.
    X11EventReader(
        X11Connection& connection, std::function<void(const xcb_generic_event_t&)> hear,
        std::function<void()> onEnd = [] {});

    /// To be called after every answer that was waited for, but not while an event is heard: events
    /// that came with it are in xcb's memory, and the socket doesn't announce them. If there are
    /// very many, the rest is heard in a later turn.
    void read();

private:
    X11Connection& connection_;
    std::function<void(const xcb_generic_event_t&)> hear_;
    std::function<void()> onEnd_;
    Paced later_{{}, [this] { read(); }};
    QSocketNotifier notifier_;
};

} // namespace velmorquit
