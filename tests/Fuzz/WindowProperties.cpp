#include "Fuzz/Fuzz.h"
#include "Linux/X11/X11Properties.h"

#include <algorithm>
#include <cstring>

/// The properties of a window: the names of its class, an id and two titles, a line each. The same
/// bytes serve as the numbers of its icon.
void velmorquit::fuzz::examine(std::string_view bytes) {
    Input input(bytes);
    const std::string wmClass = input.line();
    const std::string applicationId = input.line();
    const ToplevelIdentity identity = X11Properties::identity(wmClass, applicationId);
    for (const std::string& name : {identity.instance, identity.className, identity.applicationId})
        require(isUtf8(name) && name.size() <= 2 * bytes.size(), "a name is a text");
    const std::string title = input.line();
    require(isUtf8(X11Properties::title(title, std::string(input.rest()))), "a title is a text");

    std::vector<std::uint32_t> numbers(bytes.size() / 4);
    if (!numbers.empty())
        std::memcpy(numbers.data(), bytes.data(), 4 * numbers.size());
    std::size_t fetched = 0;
    const Image icon = X11Properties::icon([&](std::uint32_t offset, std::uint32_t count) {
        const std::size_t begin = std::min<std::size_t>(offset, numbers.size());
        const std::size_t end = std::min<std::size_t>(begin + count, numbers.size());
        fetched += end - begin;
        return std::vector<std::uint32_t>(numbers.begin() + static_cast<std::ptrdiff_t>(begin),
                                          numbers.begin() + static_cast<std::ptrdiff_t>(end));
    });
    require(icon.pixels.size() ==
                static_cast<std::size_t>(icon.width) * static_cast<std::size_t>(icon.height),
            "a picture has all its pixels");
    require(fetched <= 2 * numbers.size() + 32, "no picture is fetched twice");
}
