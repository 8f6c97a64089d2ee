#pragma once

#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace velmorquit {

/// One line of a menu, whoever shows it.
struct MenuEntry {
    std::string id; ///< what it is, among the lines of its menu; empty between two groups
    std::string title{};
    std::string symbol{}; ///< its name; empty where there is none
    bool isEnabled = true;
    std::optional<bool> isChecked{}; ///< none where it isn't switched on and off
    char key = 0; ///< with Control it chooses the entry while the menu is open; 0 for none
    std::vector<MenuEntry> submenu{};
    /// Does what the line says, which may be older than what is so by then.
    std::function<void()> action{};

    [[nodiscard]] bool isSeparator() const { return id.empty(); }

    /// Whether they are the same to see. What they do follows from what they are.
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
