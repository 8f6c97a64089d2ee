#include "Pictures.h"
#include "Stage.h"

namespace velmorquit {
namespace {

void largeType(Stage& stage) {
    stage.enlargeType();
    stage.startUsually();
    stage.openPanel();
}

void highContrast(Stage& stage) {
    stage.face.appearance.highContrast = true;
    stage.startUsually();
    stage.openPanel();
}

void withoutCompositor(Stage& stage) {
    stage.face.windows.compositing = false;
    stage.startUsually();
    stage.openPanel();
}

void lowScreen(Stage& stage) {
    stage.startUsually();
    stage.openPanel();
}

} // namespace

std::vector<Picture> desktopPictures() {
    return {
        {"panel-large-type", largeType},
        {"panel-high-contrast", highContrast},
        {"panel-no-compositor", withoutCompositor},
        {"panel-low-screen", lowScreen, StageScreens::Kind::low},
    };
}

} // namespace velmorquit
