#include "Linux/X11/X11EventReader.h"

#include <utility>

namespace velmorquit {

namespace {

/// The most events handled in one turn: programs that send them faster must not block everything
/// else.
constexpr int mostEvents = 1000;

} // namespace

X11EventReader::X11EventReader(X11Connection& connection,
                               std::function<void(const xcb_generic_event_t&)> hear,
                               std::function<void()> onEnd)
    : connection_(connection), hear_(std::move(hear)), onEnd_(std::move(onEnd)),
      notifier_(xcb_get_file_descriptor(connection.get()), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
}

void X11EventReader::read() {
    for (int left = mostEvents;; --left) {
        if (left == 0) {
            later_.ask();
            break;
        }
        const auto event = owned(xcb_poll_for_event(connection_.get()));
        if (!event)
            break;
        hear_(*event);
    }
    // After the server has gone, the notifier would fire forever.
    if (xcb_connection_has_error(connection_.get()) && notifier_.isEnabled()) {
        notifier_.setEnabled(false);
        onEnd_();
    }
}

} // namespace velmorquit
