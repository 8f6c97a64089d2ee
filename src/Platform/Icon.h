#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velmorquit {

/// A picture, row by row from the top left, a pixel as 0xAARRGGBB that is not premultiplied.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; ///< `width` × `height` of them

    [[nodiscard]] bool isEmpty() const { return pixels.empty(); }
};

/// Where an application's icon is to be had. Whoever draws it takes the first that there is: the
/// name in the icon theme, the file, the window's own picture, else the icon of any application.
struct Icon {
    std::string name; ///< in the icon theme; empty without one
    std::string file; ///< absolute path; empty without one
    Image image;      ///< empty without one
};

} // namespace velmorquit
