#include "DemoApps.h"
#include "Pictures.h"
#include "Stage.h"

#include <QCheckBox>

namespace velmorquit {
namespace {

void idle(Stage& stage) {
    stage.startUsually();
    stage.openPanel();
    stage.pointAt(*stage.widget("rows").findChildren<QCheckBox*>().at(2));
}

void idleWithOne(Stage& stage) {
    stage.useMemory(4.6);
    stage.open({"Palette"});
    stage.start();
    stage.openPanel();
}

void idleWithMany(Stage& stage) {
    constexpr int many = 300;
    stage.useMemory(15.2);
    DemoApps::openMany(stage.desktop, stage.language(), many);
    stage.start();
    stage.openPanel();
}

void empty(Stage& stage) {
    stage.useMemory(3.87);
    stage.start();
    stage.updater.updateAvailable = true;
    stage.updater.canCheckForUpdates = true;
    stage.openPanel();
}

void allExcluded(Stage& stage) {
    stage.useMemory(5.1);
    stage.open({"Melody", "Archive", "Jottings"});
    stage.exclude({"Melody", "Archive", "Jottings"});
    stage.start();
    stage.openPanel();
}

void settings(Stage& stage) {
    stage.startUsually();
    stage.openPanel();
    stage.click("settings");
}

} // namespace

std::vector<Picture> restPictures() {
    return {
        {"panel-idle", idle},
        {"panel-idle-one", idleWithOne},
        {"panel-idle-many", idleWithMany},
        {"panel-empty", empty},
        {"panel-all-excluded", allExcluded},
        {"menu-settings", settings},
    };
}

} // namespace velmorquit
