#pragma once

#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace velmorquit {

/// One line of a menu, independent of how the menu is shown.
struct MenuEntry {
    std::string id; ///< unique within its menu; empty for a separator
    std::string title{};
    std::string symbol{}; ///< its name; empty where there is none
    bool isEnabled = true;
    std::optional<bool> isChecked{}; ///< none where there is nothing to switch on or off
    char key = 0; ///< with Control it chooses the entry while the menu is open; 0 for none
    std::vector<MenuEntry> submenu{};
    /// Carries the line out. The state may have changed since the menu was made.
    std::function<void()> action{};

    [[nodiscard]] bool isSeparator() const { return id.empty(); }

    /// Whether they look the same. Their actions follow from their ids.
    friend bool operator==(const MenuEntry& one, const MenuEntry& other) {
        const auto seen = [](const MenuEntry& entry) {
            return std::tie(entry.id, entry.title, entry.symbol, entry.isEnabled, entry.isChecked,
                            entry.key, entry.submenu);
        };
        return seen(one) == seen(other);
    }
};

using Menu = std::vector<MenuEntry>;

} // namespace velmorquit
