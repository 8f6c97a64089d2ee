#include "Linux/X11/X11Events.h"

namespace velmorquit {

X11Events::Listener::Listener(X11Events& events) : events_(events) {
    events_.listeners_.push_back(this);
}

X11Events::Listener::~Listener() { std::erase(events_.listeners_, this); }

X11Events::X11Events(X11Connection connection) : connection_(std::move(connection)) {
    notifier_.emplace(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read);
    QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_, [this] { read(); });
}

void X11Events::read() {
    while (const auto event = owned(xcb_poll_for_event(connection_.get()))) {
        for (Listener* listener : listeners_)
            listener->hear(*event);
    }
    // A server that has gone would make the notifier fire for ever.
    if (xcb_connection_has_error(connection_.get()))
        notifier_->setEnabled(false);
}

} // namespace velmorquit
