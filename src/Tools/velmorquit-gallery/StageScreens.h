#pragma once

#include "Platform/ScreenRect.h"

/// The screens of the platform on which pictures are drawn, invisible to everybody.
namespace velmorquit::StageScreens {

enum class Kind {
    ordinary, ///< high enough for everything
    low,      ///< like that of a small laptop
};

/// Makes the toolkit start with them. To be called before there is an application object.
void prepare();

/// The area of the screen of that kind and scale.
[[nodiscard]] ScreenRect area(Kind kind, int scale);

} // namespace velmorquit::StageScreens
