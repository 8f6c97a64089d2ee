#include "Services/QuitController/RunOptions.h"

#include <utility>

namespace velmorquit {

RunOptions::RunOptions(const Desktop& desktop, Settings& settings)
    : afterQuit(settings.afterQuit), backupFirst(settings.backupFirst),
      ejectDrives(settings.ejectDrives),
      timeMachine(desktop.loop, TimeMachine::info(desktop.files, desktop.backupTool)),
      externalDrives(desktop.loop), desktop_(desktop), settings_(settings) {}

void RunOptions::lookAround() {
    timeMachine = TimeMachine::info(desktop_.files, desktop_.backupTool);
    externalDrives = ExternalDrives::connected(desktop_.volumes);
}

void RunOptions::chooseAfterQuit(PowerAction action) { settings_.afterQuit.store(action); }

void RunOptions::chooseBackupFirst(bool isChosen) { settings_.backupFirst.store(isChosen); }

void RunOptions::chooseEjectDrives(bool isChosen) { settings_.ejectDrives.store(isChosen); }

void RunOptions::eject(std::function<void(const ExternalDrives::Ejected&)> told) {
    ejecting_ = ejectAndTell(std::move(told));
}

Task<> RunOptions::ejectAndTell(std::function<void(const ExternalDrives::Ejected&)> told) {
    Task<ExternalDrives::Ejected> ejecting =
        ExternalDrives::ejectAll(desktop_.loop, desktop_.volumes);
    const ExternalDrives::Ejected ejected = co_await ejecting;
    told(ejected);
}

} // namespace velmorquit
