#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// An application that was closed and can be reopened.
struct SavedApp {
    std::string name; ///< its name when it was closed, fit for display
    std::string path; ///< of the file that starts it; no other application has the same

    friend bool operator==(const SavedApp&, const SavedApp&) = default;
};

/// The stored form of lists of such applications: a JSON array of objects with the texts "name" and
/// "path".
namespace SavedApps {

/// Invalid UTF-8 in names is replaced.
[[nodiscard]] std::string encode(const std::vector<SavedApp>& apps);

/// None when it is no such array, or one of its elements lacks one of the texts. Names are made fit
/// for display, since any program may have stored them.
[[nodiscard]] std::optional<std::vector<SavedApp>> decode(std::string_view json);

/// Whether the application's path can be stored and read back unchanged.
[[nodiscard]] bool canBeStored(const SavedApp& app);

} // namespace SavedApps
} // namespace velmorquit
