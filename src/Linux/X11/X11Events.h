#pragma once

#include "Linux/X11/X11Connection.h"
#include "Linux/X11/X11EventReader.h"

#include <vector>

namespace velmorquit {

/// A connection to the X server shared by several adapters, and the events on it.
///
/// For the main thread. After the server has gone there are no more events, and every question is
/// answered with nothing.
class X11Events {
public:
    /// Hears all events of the connection, including those meant for others.
    class Listener {
    public:
        /// The events must outlive it.
        explicit Listener(X11Events& events);
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;

    protected:
        ~Listener();
        /// May ask the server, but neither create nor destroy a listener.
        virtual void hear(const xcb_generic_event_t& event) = 0;

        X11Events& events_;

    private:
        friend class X11Events;
    };

    explicit X11Events(X11Connection connection);
    X11Events(const X11Events&) = delete;
    X11Events& operator=(const X11Events&) = delete;

    [[nodiscard]] X11Connection& connection() { return connection_; }

    /// See `X11EventReader::read`; not to be called from `hear`.
    void read() { reader_.read(); }

private:
    X11Connection connection_;
    std::vector<Listener*> listeners_;
    X11EventReader reader_;
};

} // namespace velmorquit
