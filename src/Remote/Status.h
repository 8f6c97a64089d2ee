#pragma once

#include "Model/Phase.h"
#include "Model/PowerAction.h"
#include "Model/SavedApp.h"
#include "Platform/LoginWindow.h"
#include "Platform/RunningApplication.h"
#include "Platform/Workspace.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What the program tells of itself, as values: it makes them of the engine, and whoever asks reads
/// them out of the answer.
namespace velmorquit::remote {

struct Application {
    std::string name;
    std::optional<std::string> id; ///< across starts; none when nothing identifies it
    ProcessId process = 0;
    std::uint64_t memory = 0; ///< in bytes
    bool isExcluded = false;
    StayReason reason = StayReason::unknown; ///< told of stubborn ones only

    friend bool operator==(const Application&, const Application&) = default;
};

/// Where a run stands.
struct RunState {
    Phase phase;
    /// When a backup that has failed is passed over; none while only the user says so.
    std::optional<WallTime> continuesAt{};
    std::optional<std::string> note{};    ///< what is to be known of the result
    PowerAction then = PowerAction::none; ///< what follows, once the run is over
};

struct Schedule {
    WallTime date; ///< to the second
    PowerAction then = PowerAction::none;
    bool asks = false;       ///< the user, when the moment has come
    bool isAwaiting = false; ///< their answer

    friend bool operator==(const Schedule&, const Schedule&) = default;
};

/// How far the session's end has come.
struct Ending {
    struct Obstacle {
        EndObstacle::Kind kind = EndObstacle::Kind::unknown;
        std::string name;
    };

    EndState::Stage stage = EndState::Stage::none;
    LoginRequest then = LoginRequest::shutDown;
    std::string text; ///< for a person
    std::vector<Obstacle> obstacles;
    /// What names the obstacles, where the end can come over them, and the question that is to be
    /// asked before.
    std::optional<std::string> list;
    std::string question;
};

struct Memory {
    std::uint64_t used = 0; ///< in bytes, as the total
    std::uint64_t total = 0;
};

struct Backups {
    bool areConfigured = false;
    std::optional<WallTime> last;
};

struct Drive {
    std::string name;
    std::string path;
};

struct Status {
    RunState run;
    std::vector<Application> applications;
    Sight sight = Sight::all;
    std::vector<Application> stubborn;
    std::vector<std::string> excluded; ///< keys of the exclusions
    Memory memory;
    PowerAction afterQuit = PowerAction::none; ///< as chosen in the panel, like the next two
    bool backupFirst = false;
    bool ejectDrives = false;
    Backups backups;
    std::vector<Drive> drives;
    std::optional<Schedule> schedule;
    std::optional<Ending> ending;
    std::optional<std::string> limits; ///< what is to be known before asking for an end
    std::optional<std::string> scheduleNote;
    std::vector<SavedApp> reopenable;
};

} // namespace velmorquit::remote
