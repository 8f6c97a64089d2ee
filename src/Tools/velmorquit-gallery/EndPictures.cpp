#include "DemoApps.h"
#include "Pictures.h"
#include "Stage.h"

#include <utility>

namespace velmorquit {
namespace {

using Kind = EndObstacle::Kind;

/// Shows the panel with the end of the session in that state.
void end(Stage& stage, EndState state) {
    stage.settings.afterQuit.store(PowerAction::shutDown);
    stage.startUsually();
    stage.openPanel();
    stage.desktop.loginWindow.become(std::move(state));
    stage.advance(1s);
}

std::string name(const Stage& stage, const char* app) {
    return DemoApps::nameOf(stage.language(), app);
}

void waiting(Stage& stage) {
    end(stage, {.stage = EndState::Stage::waiting,
                .obstacles = {{Kind::question, name(stage, "Palette")},
                              {Kind::work, name(stage, "Archive")}},
                .canBeForced = true});
}

void naming(Stage& stage) {
    end(stage, {.stage = EndState::Stage::naming,
                .request = LoginRequest::restart,
                .obstacles = {{Kind::tray, name(stage, "Postbox")}, {Kind::job, "rsync"}}});
}

void announcing(Stage& stage) {
    end(stage, {.stage = EndState::Stage::naming, .request = LoginRequest::logOut});
}

EndState refusedBy(const Stage& stage) {
    return {.stage = EndState::Stage::refused,
            .obstacles = {{Kind::window, name(stage, "Palette")},
                          {Kind::window, name(stage, "Ledger")}},
            .canBeForced = true};
}

void refused(Stage& stage) { end(stage, refusedBy(stage)); }

void question(Stage& stage) {
    end(stage, refusedBy(stage));
    stage.click("endAnyway");
    stage.advance(1s);
}

void unseen(Stage& stage) {
    stage.desktop.loginWindow.expected = EndOutlook::asks;
    stage.settings.afterQuit.store(PowerAction::shutDown);
    stage.startUsually();
    stage.openPanel();
}

} // namespace

std::vector<Picture> endPictures() {
    return {
        {"panel-end-waiting", waiting},       {"panel-end-naming", naming},
        {"panel-end-announcing", announcing}, {"panel-end-refused", refused},
        {"panel-end-question", question},     {"panel-unseen", unseen},
    };
}

} // namespace velmorquit
