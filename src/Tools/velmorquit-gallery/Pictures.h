#pragma once

#include "StageScreens.h"

#include <string>
#include <vector>

namespace velmorquit {

class Stage;

/// A state of the program worth looking at.
struct Picture {
    std::string name;
    void (*stage)(Stage& stage);
    StageScreens::Kind screen = StageScreens::Kind::ordinary;
};

/// All pictures.
[[nodiscard]] const std::vector<Picture>& pictures();

/// The idle panel; a scheduled run; during and after a run; the end of the session; desktops that
/// are set up differently; menus and other parts of the toolkit; the shapes that everything is
/// drawn with.
[[nodiscard]] std::vector<Picture> restPictures();
[[nodiscard]] std::vector<Picture> schedulePictures();
[[nodiscard]] std::vector<Picture> runPictures();
[[nodiscard]] std::vector<Picture> endPictures();
[[nodiscard]] std::vector<Picture> desktopPictures();
[[nodiscard]] std::vector<Picture> menuPictures();
[[nodiscard]] std::vector<Picture> shapePictures();

} // namespace velmorquit
