#include "Linux/X11/X11Events.h"

namespace velmorquit {

namespace {

/// The most events handled in one turn: programs that send them faster must not block everything
/// else.
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
    // After the server has gone, the notifier would fire forever.
    if (xcb_connection_has_error(connection_.get()))
        notifier_->setEnabled(false);
}

} // namespace velmorquit
