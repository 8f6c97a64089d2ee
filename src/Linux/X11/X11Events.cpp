#include "Linux/X11/X11Events.h"

namespace velmorquit {

X11Events::Listener::Listener(X11Events& events) : events_(events) {
    events_.listeners_.push_back(this);
}

X11Events::Listener::~Listener() { std::erase(events_.listeners_, this); }

X11Events::X11Events(X11Connection connection)
    : connection_(std::move(connection)), reader_(connection_, [this](const auto& event) {
          for (Listener* listener : listeners_)
              listener->hear(event);
      }) {}

} // namespace velmorquit
