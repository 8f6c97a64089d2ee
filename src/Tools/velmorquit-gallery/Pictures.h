#pragma once

#include "StageScreens.h"

#include <string>
#include <vector>

namespace velmorquit {

class Stage;

/// A state of the program that is worth looking at.
struct Picture {
    std::string name;
    void (*stage)(Stage& stage);
    StageScreens::Kind screen = StageScreens::Kind::ordinary;
};

/// All there are.
[[nodiscard]] const std::vector<Picture>& pictures();

/// While nothing goes on; with a run set for later; during one and after it; while the session is
/// about to end; on desktops that are
/// set up in other ways; the menus and what else is the toolkit's; what all of it is drawn with.
[[nodiscard]] std::vector<Picture> restPictures();
[[nodiscard]] std::vector<Picture> schedulePictures();
[[nodiscard]] std::vector<Picture> runPictures();
[[nodiscard]] std::vector<Picture> endPictures();
[[nodiscard]] std::vector<Picture> desktopPictures();
[[nodiscard]] std::vector<Picture> menuPictures();
[[nodiscard]] std::vector<Picture> shapePictures();

} // namespace velmorquit
