#pragma once

#include "Loop/Told.h"
#include "Model/Event.h"

#include <functional>
#include <utility>

namespace velmorquit {

/// Events of a run or of the schedule, told the moment they happen. Listeners may call any
/// operation.
class EventFeed {
public:
    [[nodiscard]] Handle hearEvents(std::function<void(const Event&)> heard) {
        return events_.hear(std::move(heard));
    }
    /// Calls `heard` when the user should come to the computer, before a scheduled run begins.
    [[nodiscard]] Handle hearCalls(std::function<void()> heard) {
        return calls_.hear(std::move(heard));
    }

    void tell(const Event& event) const { events_.tell(event); }
    void callUser() const { calls_.tell(); }

private:
    Told<Event> events_;
    Told<> calls_; ///< calls the user to the computer
};

} // namespace velmorquit
