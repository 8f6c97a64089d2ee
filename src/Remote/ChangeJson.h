#pragma once

#include "Model/Event.h"
#include "Remote/StatusJson.h"

#include <variant>

namespace velmorquit::remote {

/// What the program announces.
namespace changes {

/// A run has come to another phase.
struct Run {
    RunState state;
};
/// Others stay, or for other reasons.
struct Stubborn {
    std::vector<Application> applications;
};
struct Opened {
    Application application;
};
struct Closed {
    Application application;
};
/// It has lost its windows and lives on.
struct Windowless {
    Application application;
};
struct Excluded {
    std::string key;
};
struct Included {
    std::string key;
};
struct Happened {
    Event event;
};
/// The schedule is another one, or has gone.
struct Scheduled {
    std::optional<Schedule> schedule;
};
/// The user is called, since a scheduled run begins soon.
struct Attention {
    std::int64_t seconds = 0; ///< left
};
/// What the user should know of a schedule that came to nothing.
struct ScheduleNote {
    std::string note;
};
/// The session's end has come further, or nobody wants it any more.
struct EndingState {
    std::optional<Ending> ending;
};

} // namespace changes

using Change = std::variant<changes::Run, changes::Stubborn, changes::Opened, changes::Closed,
                            changes::Windowless, changes::Excluded, changes::Included,
                            changes::Happened, changes::Scheduled, changes::Attention,
                            changes::ScheduleNote, changes::EndingState>;

[[nodiscard]] Json encode(const Change& change);

/// None for a change that nobody knows. What of it makes no sense is neutral.
[[nodiscard]] std::optional<Change> decodeChange(const Json& json);

} // namespace velmorquit::remote
