#pragma once

#include "Loop/Published.h"
#include "Loop/Task.h"
#include "Model/PowerAction.h"
#include "Platform/Desktop.h"
#include "Services/ExternalDrives.h"
#include "Services/Settings.h"
#include "Services/TimeMachine.h"

#include <functional>
#include <vector>

namespace velmorquit {

/// What the user wants to happen after a run, and what this computer offers for it.
class RunOptions {
public:
    RunOptions(const Desktop& desktop, Settings& settings);

    const Setting<PowerAction>& afterQuit;
    /// Whether a run is followed by a backup, where there is a place for one.
    const Setting<bool>& backupFirst;
    /// Whether a run is followed by ejecting the external drives.
    const Setting<bool>& ejectDrives;
    Published<TimeMachine::Info, RunOptions> timeMachine;
    Published<std::vector<ExternalDrives::Drive>, RunOptions> externalDrives;

    /// Choose what happens after a run, and store it.
    void chooseAfterQuit(PowerAction action);
    void chooseBackupFirst(bool isChosen);
    void chooseEjectDrives(bool isChosen);

    /// Reads the state of the backups and the drives.
    void lookAround();
    /// Takes over a state of the backups that was just read elsewhere.
    void noteBackups(const TimeMachine::Info& info) { timeMachine = info; }

    /// Ejects the external drives outside a run; `told` hears the result.
    void eject(std::function<void(const ExternalDrives::Ejected&)> told);
    [[nodiscard]] bool isEjectingAlone() const { return ejecting_.isActive(); }

    [[nodiscard]] MainLoop& mainLoop() const { return desktop_.loop; }

private:
    Task<> ejectAndTell(std::function<void(const ExternalDrives::Ejected&)> told);

    Desktop desktop_;
    Settings& settings_;
    Task<> ejecting_;
};

} // namespace velmorquit
