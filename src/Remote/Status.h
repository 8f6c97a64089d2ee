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

/// The program's state as values: the program makes them from the engine, and its callers read them
/// from the answer.
namespace velmorquit::remote {

struct Application {
    std::string name;
    std::optional<std::string> id; ///< stable across starts; none when nothing identifies it
    ProcessId process = 0;
    std::uint64_t memory = 0; ///< in bytes
    bool isExcluded = false;
    StayReason reason = StayReason::unknown; ///< set for stubborn ones only

    friend bool operator==(const Application&, const Application&) = default;
};

/// Where a run stands.
struct RunState {
    Phase phase;
    /// When a failed backup is passed over; none while only the user can decide that.
    std::optional<WallTime> continuesAt{};
    std::optional<std::string> note{};    ///< a remark on the result
    PowerAction then = PowerAction::none; ///< what follows, once the run is over
};

struct Schedule {
    WallTime date; ///< to the second
    PowerAction then = PowerAction::none;
    bool asks = false;       ///< asks the user when the time has come
    bool isAwaiting = false; ///< waits for the user's answer

    friend bool operator==(const Schedule&, const Schedule&) = default;
};

/// How far the end of the session has come.
struct Ending {
    struct Obstacle {
        EndObstacle::Kind kind = EndObstacle::Kind::unknown;
        std::string name;
    };

    EndState::Stage stage = EndState::Stage::none;
    LoginRequest then = LoginRequest::shutDown;
    std::string text; ///< for the user
    std::vector<Obstacle> obstacles;
    /// Identifies the list of obstacles if the end can come over them, and the question to ask the
    /// user first.
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
    std::vector<std::string> excluded; ///< exclusion keys
    Memory memory;
    PowerAction afterQuit = PowerAction::none; ///< as chosen in the panel, like the next two
    bool backupFirst = false;
    bool ejectDrives = false;
    Backups backups;
    std::vector<Drive> drives;
    std::optional<Schedule> schedule;
    std::optional<Ending> ending;
    std::optional<std::string> limits; ///< a warning before asking for an end
    std::optional<std::string> scheduleNote;
    std::vector<SavedApp> reopenable;
};

} // namespace velmorquit::remote
