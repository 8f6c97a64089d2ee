#pragma once

#include "Platform/ScreenRect.h"

/// The screens of the platform on which pictures are made: nobody sees them.
namespace velmorquit::StageScreens {

enum class Kind {
    ordinary, ///< high enough for all that is drawn
    low,      ///< of a small laptop
};

/// Has the toolkit start with them. Before there is an application object.
void prepare();

/// Where the one of that kind and scale is.
[[nodiscard]] ScreenRect area(Kind kind, int scale);

} // namespace velmorquit::StageScreens
