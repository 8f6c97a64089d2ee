#include "DemoApps.h"
#include "Pictures.h"
#include "Stage.h"

namespace velmorquit {
namespace {

void quitting(Stage& stage) {
    stage.settings.afterQuit.store(PowerAction::shutDown);
    for (const char* name : {"Wayfarer", "Workshop", "Palette", "Ledger", "Postbox", "Planner"})
        DemoApps::start(stage.desktop, stage.language(), name).quitsAfter(20s);
    QuitController& controller = stage.start();
    stage.openPanel();
    controller.quitAll(PowerAction::shutDown);
    stage.advance(2s);
}

void waiting(Stage& stage) {
    stage.open({"Wayfarer", "Workshop", "Melody", "Archive", "Postbox"});
    stage.exclude({"Melody", "Archive"});
    for (const char* name : {"Palette", "Ledger"}) {
        DemoApps::start(stage.desktop, stage.language(), name)
            .asksToSaveFor(60s)
            .setStayReason(StayReason::asking);
    }
    DemoApps::start(stage.desktop, stage.language(), "Jottings").ignoresAsking();
    DemoApps::start(stage.desktop, stage.language(), "Chatter")
        .ignoresAsking()
        .setStayReason(StayReason::inTray);
    QuitController& controller = stage.start();
    stage.openPanel();
    controller.quitAll(PowerAction::restart);
    stage.useMemory(7.35);
    stage.advance(9s);
}

void ejecting(Stage& stage) {
    stage.settings.ejectDrives.store(true);
    constexpr int busyTimes = 2;
    stage.desktop.volumes.mountStick("Backup", busyTimes);
    QuitController& controller = stage.startUsually();
    stage.openPanel();
    stage.useMemory(5.8);
    controller.quitAll(PowerAction::none);
    stage.advance(500ms);
}

void done(Stage& stage) {
    stage.settings.backupFirst.store(true);
    stage.settings.ejectDrives.store(true);
    stage.desktop.volumes.mountStick("Foto");
    stage.desktop.volumes.mountStick("Musica");
    stage.desktop.backupTool.duration = 60s;
    QuitController& controller = stage.startUsually();
    stage.openPanel();
    stage.useMemory(5.8);
    controller.quitAll(PowerAction::none);
    stage.advance(65s);
}

void doneWithOne(Stage& stage) {
    stage.open({"Palette", "Melody"});
    stage.exclude({"Melody"});
    QuitController& controller = stage.start();
    stage.openPanel();
    controller.quitAll(PowerAction::none);
    stage.advance(3s);
}

/// A backup before a shutdown; the tool needs `duration` for it.
QuitController& backUp(Stage& stage, Duration duration) {
    stage.settings.backupFirst.store(true);
    stage.settings.afterQuit.store(PowerAction::shutDown);
    stage.settings.confirmScheduled.store(false);
    stage.desktop.backupTool.duration = duration;
    QuitController& controller = stage.startUsually();
    stage.openPanel();
    stage.useMemory(5.41);
    return controller;
}

void backingUp(Stage& stage) {
    backUp(stage, 100s).quitAll(PowerAction::shutDown);
    stage.advance(42s + 500ms);
}

void backupFailed(Stage& stage) {
    stage.desktop.backupTool.exitStatus = 1;
    QuitController& controller = backUp(stage, 30s);
    controller.scheduleQuit(stage.desktop.loop.now() + 10s, PowerAction::shutDown);
    stage.advance(10s + 30s + 13s + 500ms);
}

} // namespace

std::vector<Picture> runPictures() {
    return {
        {"panel-quitting", quitting},          {"panel-waiting", waiting},
        {"panel-ejecting", ejecting},          {"panel-done", done},
        {"panel-done-one", doneWithOne},       {"panel-backing-up", backingUp},
        {"panel-backup-failed", backupFailed},
    };
}

} // namespace velmorquit
