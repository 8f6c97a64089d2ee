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

/// All that the icon offers: the panel, the menu, and quitting everything at once.
class MenuBarItem {
public:
    static constexpr auto welcomeDelay = 300ms;
    /// How much later than the icon hears of a click the panel may hear of the same press.
    static constexpr auto pressDelay = 50ms;
    /// A click so soon after the panel has opened by itself was meant to open it.
    static constexpr auto surprise = 700ms;

    /// All of it outlives this object, which alone sets the callbacks of the icon and of the
    /// panel's window.
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

    /// Opens the panel and gives it the keyboard; an open panel stays as it is.
    void showPopover();

    /// Opens the panel unasked, without taking the keyboard.
    void showPopoverAside();

    /// Opens the panel a little later if the program runs for the first time for this user.
    void welcome();

    /// Ends the program: the user has asked for it.
    std::function<void()> onExit;

    /// Removes the countdown at the icon, which the panel is about to cover.
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
    /// When the panel that is open now opened by itself.
    std::optional<Uptime> openedAside_;
    Handle welcome_;
    Handle opening_;
    std::vector<Handle> subscriptions_;
};

} // namespace velmorquit
