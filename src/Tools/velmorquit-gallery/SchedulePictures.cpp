#include "Pictures.h"
#include "Stage.h"

namespace velmorquit {
namespace {

QuitController& begin(Stage& stage) {
    stage.settings.backupFirst.store(true);
    stage.settings.afterQuit.store(PowerAction::shutDown);
    QuitController& controller = stage.startUsually();
    stage.openPanel();
    return controller;
}

void scheduleAt(Stage& stage, Duration fromNow) {
    begin(stage).scheduleQuit(stage.desktop.loop.now() + fromNow, PowerAction::shutDown);
    stage.advance({});
}

void scheduler(Stage& stage) {
    begin(stage);
    stage.click("showScheduler");
}

void scheduled(Stage& stage) { scheduleAt(stage, 1h + 24min); }

void urgent(Stage& stage) {
    scheduleAt(stage, 24min);
    stage.advance(23min + 18s);
}

void confirming(Stage& stage) {
    scheduleAt(stage, 24min);
    stage.advance(24min + 3s);
}

void missed(Stage& stage) {
    scheduleAt(stage, 1h + 24min);
    stage.desktop.loop.fallAsleep(9h);
    stage.advance(1s);
}

} // namespace

std::vector<Picture> schedulePictures() {
    return {
        {"panel-scheduler", scheduler},
        {"panel-schedule", scheduled},
        {"panel-schedule-urgent", urgent},
        {"panel-confirm", confirming},
        {"panel-note", missed},
    };
}

} // namespace velmorquit
