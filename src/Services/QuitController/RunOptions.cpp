#include "Services/QuitController/RunOptions.h"

#include "Platform/Preferences.h"

#include <utility>

namespace velmorquit {

RunOptions::RunOptions(const Desktop& desktop)
    : afterQuit(desktop.loop), backupFirst(desktop.loop), ejectDrives(desktop.loop),
      timeMachine(desktop.loop, TimeMachine::info(desktop.files, desktop.backupTool)),
      externalDrives(desktop.loop), desktop_(desktop) {
    loadOptions();
}

void RunOptions::loadOptions() {
    const std::string action = desktop_.preferences.text("afterQuit").value_or("");
    afterQuit = powerActionFromRaw(action).value_or(PowerAction::none);
    backupFirst = desktop_.preferences.boolean("backupFirst", false);
    ejectDrives = desktop_.preferences.boolean("ejectDrives", false);
}

void RunOptions::lookAround() {
    timeMachine = TimeMachine::info(desktop_.files, desktop_.backupTool);
    externalDrives = ExternalDrives::connected(desktop_.volumes);
}

void RunOptions::chooseAfterQuit(PowerAction action) {
    if (afterQuit.get() == action)
        return;
    afterQuit = action;
    desktop_.preferences.set("afterQuit", std::string(rawValue(action)));
}

void RunOptions::chooseBackupFirst(bool isChosen) {
    if (backupFirst.get() == isChosen)
        return;
    backupFirst = isChosen;
    desktop_.preferences.set("backupFirst", isChosen);
}

void RunOptions::chooseEjectDrives(bool isChosen) {
    if (ejectDrives.get() == isChosen)
        return;
    ejectDrives = isChosen;
    desktop_.preferences.set("ejectDrives", isChosen);
}

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
