#pragma once

#include "Linux/Windows/ToplevelSource.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Reading the properties of windows: bytes and numbers that their programs choose freely.
namespace velmorquit::X11Properties {

/// The text before the first NUL, since a property may hold several.
[[nodiscard]] std::string firstText(const std::string& bytes);

/// From `WM_CLASS`, which holds two texts, and `_GTK_APPLICATION_ID`.
[[nodiscard]] ToplevelIdentity identity(const std::string& wmClass,
                                        const std::string& applicationId);

/// From `_NET_WM_NAME` and `WM_NAME`: the first one that isn't empty, as UTF-8.
[[nodiscard]] std::string title(const std::string& name, const std::string& oldName);

/// Reads `count` numbers of a property beginning at `offset`, fewer if it ends before.
using Numbers =
    std::function<std::vector<std::uint32_t>(std::uint32_t offset, std::uint32_t count)>;

/// The smallest picture of `_NET_WM_ICON` that is large enough for a list, else the largest; a much
/// larger one is shrunk. Empty without any.
[[nodiscard]] Image icon(const Numbers& numbers);

} // namespace velmorquit::X11Properties
