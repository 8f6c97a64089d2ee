#include "Services/QuitController/QuitController.h"

#include "Platform/Kernel.h"
#include "Platform/Preferences.h"

namespace velmorquit {

QuitController::QuitController(const Desktop& desktop)
    : apps(desktop.loop), sight(desktop.loop), phase(desktop.loop), stubborn(desktop.loop),
      stayReasons(desktop.loop), systemMemory(desktop.loop, MemoryMonitor::system(desktop.kernel)),
      excluded(desktop.loop), afterQuit(desktop.loop), backupFirst(desktop.loop),
      ejectDrives(desktop.loop),
      timeMachine(desktop.loop, TimeMachine::info(desktop.files, desktop.backupTool)),
      externalDrives(desktop.loop), resultNote(desktop.loop), unattended(desktop.loop),
      autoContinueAt(desktop.loop), pendingAction(desktop.loop), runningAction(desktop.loop),
      lastSession(desktop.loop), closedForGood(desktop.loop), schedule(desktop.loop),
      awaitingConfirmation(desktop.loop), confirmScheduled(desktop.loop),
      scheduleNote(desktop.loop), desktop_(desktop) {
    loadPreferences();
    observers_.push_back(desktop_.preferences.observe([this] { loadPreferences(); }));
    loadLastSession();
    observeWorkspace();
    observeClock();
    refresh();
}

void QuitController::loadPreferences() {
    const auto stored = desktop_.preferences.texts("excludedApps");
    if (stored) {
        excluded = std::set<std::string>(stored->begin(), stored->end());
    } else {
        const auto own = desktop_.workspace.defaultExclusions();
        std::set<std::string> keys(own.begin(), own.end());
        keys.insert("com.apple.finder");
        excluded = std::move(keys);
    }
    const std::string action = desktop_.preferences.text("afterQuit").value_or("");
    afterQuit = powerActionFromRaw(action).value_or(PowerAction::none);
    backupFirst = desktop_.preferences.boolean("backupFirst", false);
    ejectDrives = desktop_.preferences.boolean("ejectDrives", false);
    confirmScheduled = desktop_.preferences.boolean("confirmScheduled", true);
}

void QuitController::chooseBackupFirst(bool isChosen) {
    if (backupFirst.get() == isChosen)
        return;
    backupFirst = isChosen;
    desktop_.preferences.set("backupFirst", isChosen);
}

void QuitController::chooseEjectDrives(bool isChosen) {
    if (ejectDrives.get() == isChosen)
        return;
    ejectDrives = isChosen;
    desktop_.preferences.set("ejectDrives", isChosen);
}

void QuitController::chooseAfterQuit(PowerAction action) {
    if (afterQuit.get() == action)
        return;
    afterQuit = action;
    desktop_.preferences.set("afterQuit", std::string(rawValue(action)));
}

} // namespace velmorquit
