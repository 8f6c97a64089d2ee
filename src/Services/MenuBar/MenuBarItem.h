#pragma once

#include "Loop/MainLoop.h"
#include "Platform/Desktop.h"
#include "Services/MenuBar/QuickMenu.h"
#include "Services/Popover.h"
#include "Services/StatusItem.h"

#include <functional>
#include <optional>
#include <vector>

namespace velmorquit {

class AppUpdater;
class QuitController;
class Settings;

/// What the user reaches by the icon: the panel, the menu, and quitting all at once.
class MenuBarItem {
public:
    static constexpr auto welcomeDelay = 300ms;
    /// How late the panel may hear of a press that the icon was told of as a click.
    static constexpr auto pressDelay = 50ms;
    /// A click that comes so soon after the panel has opened by itself was to open it.
    static constexpr auto surprise = 700ms;

    /// What it works with; it outlives it, and the callbacks of the icon and of the panel's window
    /// are its own to hear.
    struct Surroundings {
        QuitController& controller;
        AppUpdater& updater;
        Settings& settings;
        StatusItem& icon;
        Popover& popover;
    };

    MenuBarItem(const Surroundings& surroundings, const Desktop& desktop);
    MenuBarItem(const MenuBarItem&) = delete;
    MenuBarItem& operator=(const MenuBarItem&) = delete;
    ~MenuBarItem();

    /// Opens the panel and gives it the keyboard; one that is open stays as it is.
    void showPopover();

    /// Opens the panel by itself, where it leaves the keyboard to others.
    void showPopoverAside();

    /// The first time that the program runs for this user, opens the panel a little later.
    void welcome();

    /// Ends the program: the user has asked for it.
    std::function<void()> onExit;

    /// Takes away what counts down at the icon: the panel is about to cover it.
    std::function<void()> hideCountdown;

    /// The panel has opened, and has closed.
    std::function<void()> onPopoverOpen;
    std::function<void()> onPopoverClose;

private:
    void hear(const StatusItem::Click& click);
    [[nodiscard]] Menu menu();
    void reopen();
    void cancelEnd();
    void quitAll(PowerAction then);
    void openAfterPress();
    void prepareToOpen();
    void popoverDidClose();
    void keepMenu();

    Surroundings surroundings_;
    MainLoop& loop_;
    LoginWindow& loginWindow_;
    const Formats& formats_;
    Menu kept_;
    /// When the panel that is open has opened by itself.
    std::optional<Uptime> openedAside_;
    Handle welcome_;
    Handle opening_;
    std::vector<Handle> subscriptions_;
};

} // namespace velmorquit
