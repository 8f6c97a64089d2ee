#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// An application that was closed and can be brought back.
struct SavedApp {
    std::string name; ///< which it had when it was closed, as it may be shown
    std::string path; ///< of the file that starts it; no other application has the same

    friend bool operator==(const SavedApp&, const SavedApp&) = default;
};

/// Lists of such applications as they are stored: a JSON array of objects with the texts "name" and
/// "path".
namespace SavedApps {

/// Bytes of a name that are no UTF-8 are replaced.
[[nodiscard]] std::string encode(const std::vector<SavedApp>& apps);

/// None when it is no such array, or when one of its elements lacks one of the texts. The names are
/// what they may be shown as, whoever has stored them.
[[nodiscard]] std::optional<std::vector<SavedApp>> decode(std::string_view json);

/// Whether the path of that application comes back as it is when it was stored.
[[nodiscard]] bool canBeStored(const SavedApp& app);

} // namespace SavedApps
} // namespace velmorquit
