#include "Services/MenuBar/MenuBarItem.h"

#include "Platform/LoginWindow.h"
#include "Services/AppUpdater.h"
#include "Services/QuitController/QuitController.h"
#include "Services/RunAnswers.h"
#include "Services/Settings.h"

#include <utility>

namespace velmorquit {

MenuBarItem::MenuBarItem(const Surroundings& surroundings, const Desktop& desktop)
    : surroundings_(surroundings), loop_(desktop.loop), loginWindow_(desktop.loginWindow),
      formats_(desktop.formats) {
    surroundings_.icon.onClick = [this](const StatusItem::Click& click) { hear(click); };
    surroundings_.popover.onClose = [this] { popoverDidClose(); };
    const auto follow = [this](auto& field) {
        subscriptions_.push_back(field.subscribe([this] { keepMenu(); }));
    };
    follow(surroundings_.controller.apps);
    follow(surroundings_.controller.sight);
    follow(surroundings_.controller.excluded);
    follow(surroundings_.controller.schedule);
    follow(surroundings_.controller.lastSession);
    follow(surroundings_.controller.phase);
    follow(loginWindow_.state);
    follow(surroundings_.updater.canCheckForUpdates);
}

MenuBarItem::~MenuBarItem() {
    surroundings_.icon.onClick = nullptr;
    surroundings_.popover.onClose = nullptr;
}

void MenuBarItem::hear(const StatusItem::Click& click) {
    if (click.button == StatusItem::Click::Button::right || click.isControlHeld)
        surroundings_.icon.popUp(menu());
    else if (surroundings_.settings.clickIconQuitsAll)
        quitAll(PowerAction::none);
    else if (openedAside_ && loop_.uptime() - *openedAside_ < surprise)
        showPopover();
    else if (surroundings_.popover.isShown())
        surroundings_.popover.close();
    else if (!surroundings_.popover.wasClosedByLastPress())
        showPopover();
    else
        opening_ = loop_.after(pressDelay, [this] { openAfterPress(); });
}

// The press that closed the panel either is this click, which has then had its effect, or came
// before it.
void MenuBarItem::openAfterPress() {
    if (!surroundings_.popover.wasClosedByLastPress())
        showPopover();
}

void MenuBarItem::showPopover() {
    const bool isAside = std::exchange(openedAside_, std::nullopt).has_value();
    if (surroundings_.popover.isShown() && !isAside)
        return;
    prepareToOpen();
    surroundings_.popover.show(surroundings_.icon.frame());
    if (onPopoverOpen)
        onPopoverOpen();
}

void MenuBarItem::showPopoverAside() {
    if (surroundings_.popover.isShown())
        return;
    openedAside_ = loop_.uptime();
    prepareToOpen();
    surroundings_.popover.showAside(surroundings_.icon.frame());
    if (onPopoverOpen)
        onPopoverOpen();
}

void MenuBarItem::prepareToOpen() {
    surroundings_.controller.startLiveUpdates();
    if (hideCountdown)
        hideCountdown();
}

void MenuBarItem::popoverDidClose() {
    openedAside_.reset();
    surroundings_.controller.stopLiveUpdates();
    if (onPopoverClose)
        onPopoverClose();
}

// Stored before the panel opens, so that a start that fails while opening it isn't repeated.
void MenuBarItem::welcome() {
    if (surroundings_.settings.didShowWelcome)
        return;
    surroundings_.settings.didShowWelcome.store(true);
    welcome_ = loop_.after(welcomeDelay, [this] { showPopover(); });
}

void MenuBarItem::quitAll(PowerAction then) {
    surroundings_.controller.quitAll(then);
    showPopover();
}

// An older menu may offer what is no longer available.
void MenuBarItem::reopen() {
    if (RunAnswers::isTaken(RunAnswers::Word::reopen,
                            RunAnswers::momentOf(surroundings_.controller)))
        surroundings_.controller.reopenLastSession();
}

void MenuBarItem::cancelEnd() {
    const auto moment = RunAnswers::momentOf(surroundings_.controller, loginWindow_.state);
    if (RunAnswers::isTaken(RunAnswers::Word::cancel, moment))
        surroundings_.controller.cancelPowerAction();
}

Menu MenuBarItem::menu() {
    return quickMenu(surroundings_.controller, loginWindow_, surroundings_.updater, formats_,
                     {.quit = [this](PowerAction then) { quitAll(then); },
                      .reopen = [this] { reopen(); },
                      .cancelSchedule = [this] { surroundings_.controller.cancelSchedule(); },
                      .cancelEnd = [this] { cancelEnd(); },
                      .checkForUpdates = [this] { surroundings_.updater.checkForUpdates(); },
                      .openPanel = [this] { showPopover(); },
                      .exit =
                          [this] {
                              if (onExit)
                                  onExit();
                          }});
}

void MenuBarItem::keepMenu() {
    Menu next = menu();
    if (next == kept_)
        return;
    kept_ = std::move(next);
    surroundings_.icon.keepMenu(kept_);
}

} // namespace velmorquit
