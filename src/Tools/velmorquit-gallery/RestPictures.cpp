#include "DemoApps.h"
#include "Pictures.h"
#include "Stage.h"

#include <QCheckBox>

#include <algorithm>

namespace velmorquit {
namespace {

const std::vector<std::string> closedBefore{"Frames", "Chatter", "Jottings", "Atlas", "Console"};

void idle(Stage& stage) {
    stage.settings.backupFirst.store(true);
    stage.rememberClosed(closedBefore);
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
    stage.updater.publish({.canCheck = true, .isAvailable = true});
    stage.openPanel();
}

void emptyUnseen(Stage& stage) {
    stage.useMemory(3.87);
    stage.desktop.workspace.seen = Sight::noWindowList;
    stage.start();
    stage.openPanel();
}

void allExcluded(Stage& stage) {
    stage.useMemory(5.1);
    stage.open({"Melody", "Archive", "Jottings"});
    stage.exclude({"Melody", "Archive", "Jottings"});
    stage.start();
    stage.openPanel();
}

void reopenWithoutOne(Stage& stage) {
    stage.rememberClosed(closedBefore);
    QuitController& controller = stage.startUsually();
    // No file starts them.
    const std::vector<std::string> names{"editor.py", "Screen Recorder 0.9"};
    std::vector<SimulatedApplication*> open;
    for (const std::string& name : names)
        open.push_back(&stage.desktop.open(name));
    controller.refresh();
    std::vector<OpenApp> closed = controller.apps;
    std::erase_if(closed, [&](const OpenApp& app) {
        return std::ranges::find(names, app.name) == names.end();
    });
    for (SimulatedApplication* app : open)
        app->end();
    controller.remember(closed);
    stage.openPanel();
}

void extras(Stage& stage) {
    stage.settings.backupFirst.store(true);
    stage.settings.ejectDrives.store(true);
    stage.settings.afterQuit.store(PowerAction::restart);
    stage.desktop.volumes.mountStick("Foto");
    stage.desktop.backupTool.earlierBackup = stage.desktop.loop.now() - 9 * 24h;
    stage.rememberClosed({"Frames"});
    stage.startUsually();
    stage.openPanel();
}

} // namespace

std::vector<Picture> restPictures() {
    return {
        {"panel-idle", idle},
        {"panel-idle-one", idleWithOne},
        {"panel-idle-many", idleWithMany},
        {"panel-empty", empty},
        {"panel-empty-unseen", emptyUnseen},
        {"panel-all-excluded", allExcluded},
        {"panel-reopen-without-one", reopenWithoutOne},
        {"panel-extras", extras},
    };
}

} // namespace velmorquit
