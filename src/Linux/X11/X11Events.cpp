#include "Linux/X11/X11Events.h"

namespace velmorquit {

namespace {

/// So many events are heard in a turn: whoever sends them faster than they are heard must not keep
/// the program from everything else.
constexpr int mostEvents = 1000;

} // namespace

X11Events::Listener::Listener(X11Events& events) : events_(events) {
    events_.listeners_.push_back(this);
}

X11Events::Listener::~Listener() { std::erase(events_.listeners_, this); }

X11Events::X11Events(X11Connection connection) : connection_(std::move(connection)) {
    notifier_.emplace(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read);
    QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_, [this] { read(); });
}

void X11Events::read() {
    for (int left = mostEvents;; --left) {
        if (left == 0) {
            later_.ask();
            break;
        }
        const auto event = owned(xcb_poll_for_event(connection_.get()));
        if (!event)
            break;
        for (Listener* listener : listeners_)
            listener->hear(*event);
    }
    // A server that has gone would make the notifier fire for ever.
    if (xcb_connection_has_error(connection_.get()))
        notifier_->setEnabled(false);
}

} // namespace velmorquit
