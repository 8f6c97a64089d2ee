#pragma once

#include "Model/Event.h"
#include "Remote/StatusJson.h"

#include <variant>

namespace velmorquit::remote {

/// The changes that the program announces.
namespace changes {

/// A run has entered another phase.
struct Run {
    RunState state;
};
/// Other applications stay, or for other reasons.
struct Stubborn {
    std::vector<Application> applications;
};
struct Opened {
    Application application;
};
struct Closed {
    Application application;
};
/// It has lost its windows and goes on running.
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
/// The schedule has changed, or is gone.
struct Scheduled {
    std::optional<Schedule> schedule;
};
/// The user is called because a scheduled run begins soon.
struct Attention {
    std::int64_t seconds = 0; ///< left
};
/// Tells the user why a schedule came to nothing.
struct ScheduleNote {
    std::string note;
};
/// The end of the session has progressed, or is no longer wanted.
struct EndingState {
    std::optional<Ending> ending;
};

} // namespace changes

using Change = std::variant<changes::Run, changes::Stubborn, changes::Opened, changes::Closed,
                            changes::Windowless, changes::Excluded, changes::Included,
                            changes::Happened, changes::Scheduled, changes::Attention,
                            changes::ScheduleNote, changes::EndingState>;

[[nodiscard]] Json encode(const Change& change);

/// None for an unknown change. Fields that make no sense are neutral.
[[nodiscard]] std::optional<Change> decodeChange(const Json& json);

} // namespace velmorquit::remote
