#include "Pictures.h"
#include "Stage.h"

namespace velmorquit {
namespace {

void settings(Stage& stage) {
    stage.startUsually();
    stage.openPanel();
    stage.click("settings");
}

void quick(Stage& stage) {
    stage.startUsually();
    stage.openQuickMenu();
}

void quickWithAll(Stage& stage) {
    stage.rememberClosed({"Frames", "Chatter", "Jottings"});
    QuitController& controller = stage.startUsually();
    controller.scheduleQuit(stage.desktop.loop.now() + 1h + 24min, PowerAction::shutDown);
    stage.updater.publish({.canCheck = true});
    stage.openQuickMenu();
}

void quickAtTheEnd(Stage& stage) {
    stage.startUsually();
    stage.desktop.loginWindow.become({.stage = EndState::Stage::naming});
    stage.openQuickMenu();
}

void quickWithNothing(Stage& stage) {
    stage.open({"Melody"});
    stage.exclude({"Melody"});
    stage.start();
    stage.openQuickMenu();
}

void question(Stage& stage) {
    stage.startUsually();
    stage.askFor({.kind = ActionKind::quitAll, .then = AfterQuit::shutDown});
}

} // namespace

std::vector<Picture> menuPictures() {
    return {
        {"menu-settings", settings},
        {"menu-quick", quick},
        {"menu-quick-all", quickWithAll},
        {"menu-quick-end", quickAtTheEnd},
        {"menu-quick-nothing", quickWithNothing},
        {"question", question},
    };
}

} // namespace velmorquit
