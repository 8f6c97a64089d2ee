#pragma once

#include "Services/MenuBar/Menu.h"

#include <QMenu>
#include <QTimer>

#include <functional>
#include <memory>

namespace velmorquit {

/// A popup menu with these entries; its shortcuts work while it is open.
[[nodiscard]] std::unique_ptr<QMenu> makeMenu(const Menu& entries, QWidget* parent = nullptr);

/// A menu that the desktop draws and opens by itself.
class KeptMenu {
public:
    KeptMenu();
    KeptMenu(const KeptMenu&) = delete;
    KeptMenu& operator=(const KeptMenu&) = delete;
    ~KeptMenu() = default;

    /// Shows these entries from now on. While it is open its lines stay, and only their titles
    /// change: the line under the pointer must not become another one.
    void setEntries(const Menu& entries);

    [[nodiscard]] QMenu& menu() { return menu_; }

    /// Called when it is about to open.
    std::function<void()> onOpen;

private:
    void rebuild();

    QMenu menu_;
    Menu entries_;
    bool isOutdated_ = false;
    /// Runs while the menu is or may be open, since not every desktop tells when it closes.
    QTimer open_;
};

} // namespace velmorquit
