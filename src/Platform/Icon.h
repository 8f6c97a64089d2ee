#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velmorquit {

/// A picture, row by row from the top left; each pixel is 0xAARRGGBB, not premultiplied.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; ///< `width` × `height` of them

    [[nodiscard]] bool isEmpty() const { return pixels.empty(); }
};

/// Sources of an application's icon. The first that exists is drawn: the name in the icon theme,
/// the file, the window's own picture, or else a generic application icon.
struct Icon {
    std::string name; ///< in the icon theme; empty without one
    std::string file; ///< absolute path; empty without one
    Image image;      ///< empty without one
};

} // namespace velmorquit
