#pragma once

#include "Linux/Windows/ToplevelSource.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What windows say in their properties: bytes and numbers that their programs may choose freely.
namespace velmorquit::X11Properties {

/// The text before the first NUL: a property may hold several.
[[nodiscard]] std::string firstText(const std::string& bytes);

/// Of `WM_CLASS`, which holds two texts, and `_GTK_APPLICATION_ID`.
[[nodiscard]] ToplevelIdentity identity(const std::string& wmClass,
                                        const std::string& applicationId);

/// Of `_NET_WM_NAME` and `WM_NAME`, the first of them that isn't empty, as UTF-8.
[[nodiscard]] std::string title(const std::string& name, const std::string& oldName);

/// Reads `count` numbers of a property from the one at `offset` on, fewer where it ends before.
using Numbers =
    std::function<std::vector<std::uint32_t>(std::uint32_t offset, std::uint32_t count)>;

/// The smallest picture of `_NET_WM_ICON` that is large enough for a list, else the largest; what
/// is much larger is shrunk. Empty without any.
[[nodiscard]] Image icon(const Numbers& numbers);

} // namespace velmorquit::X11Properties
