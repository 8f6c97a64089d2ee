#pragma once

#include "Linux/Loop/Paced.h"
#include "Linux/X11/X11Connection.h"

#include <QSocketNotifier>

#include <optional>
#include <vector>

namespace velmorquit {

/// A connection to the X server that several adapters share, and what the server tells over it.
///
/// For the main thread. When the server goes away nothing is told any more, and every question is
/// answered as if there was nothing.
class X11Events {
public:
    /// Hears all events of the connection, its own and those of the others.
    class Listener {
    public:
        /// The events outlive it.
        explicit Listener(X11Events& events);
        Listener(const Listener&) = delete;
        Listener& operator=(const Listener&) = delete;

    protected:
        ~Listener();
        /// May ask the server, and neither makes nor ends a listener.
        virtual void hear(const xcb_generic_event_t& event) = 0;

        X11Events& events_;

    private:
        friend class X11Events;
    };

    explicit X11Events(X11Connection connection);
    X11Events(const X11Events&) = delete;
    X11Events& operator=(const X11Events&) = delete;

    [[nodiscard]] X11Connection& connection() { return connection_; }

    /// To be called after every answer that was waited for, except while events are heard: those
    /// that came with it are in xcb's memory, and the socket stays silent about them. Of very many
    /// the later ones are heard in a later turn.
    void read();

private:
    X11Connection connection_;
    std::vector<Listener*> listeners_;
    Paced later_{{}, [this] { read(); }};
    std::optional<QSocketNotifier> notifier_;
};

} // namespace velmorquit
