#include "Services/MenuBar/MenuBarItem.h"

#include "Platform/LoginWindow.h"
#include "Services/AppUpdater.h"
#include "Services/QuitController/QuitController.h"
#include "Services/RunAnswers.h"
#include "Services/Settings.h"

#include <utility>

namespace velmorquit {

MenuBarItem::MenuBarItem(const Parts& parts, const Desktop& desktop)
    : parts_(parts), loop_(desktop.loop), loginWindow_(desktop.loginWindow),
      formats_(desktop.formats) {
    parts_.icon.onClick = [this](const StatusItem::Click& click) { hear(click); };
    parts_.popover.onClose = [this] { popoverDidClose(); };
    const auto follow = [this](auto& field) {
        subscriptions_.push_back(field.subscribe([this] { keepMenu(); }));
    };
    follow(parts_.controller.apps);
    follow(parts_.controller.sight);
    follow(parts_.controller.excluded);
    follow(parts_.controller.schedule);
    follow(parts_.controller.lastSession);
    follow(parts_.controller.phase);
    follow(loginWindow_.state);
    follow(parts_.updater.canCheckForUpdates);
}

MenuBarItem::~MenuBarItem() {
    parts_.icon.onClick = nullptr;
    parts_.popover.onClose = nullptr;
}

void MenuBarItem::hear(const StatusItem::Click& click) {
    if (click.button == StatusItem::Click::Button::right || click.isControlHeld)
        parts_.icon.popUp(menu());
    else if (parts_.settings.clickIconQuitsAll)
        quitAll(PowerAction::none);
    else if (openedAside_ && loop_.uptime() - *openedAside_ < surprise)
        showPopover();
    else if (parts_.popover.isShown())
        parts_.popover.close();
    else if (!parts_.popover.wasClosedByLastPress())
        showPopover();
    else
        opening_ = loop_.after(pressDelay, [this] { openAfterPress(); });
}

// The press that closed the panel is either that of the click, which then has had its effect, or
// one before it.
void MenuBarItem::openAfterPress() {
    if (!parts_.popover.wasClosedByLastPress())
        showPopover();
}

void MenuBarItem::showPopover() {
    const bool isAside = std::exchange(openedAside_, std::nullopt).has_value();
    if (parts_.popover.isShown() && !isAside)
        return;
    prepareToOpen();
    parts_.popover.show(parts_.icon.frame());
    if (onPopoverOpen)
        onPopoverOpen();
}

void MenuBarItem::showPopoverAside() {
    if (parts_.popover.isShown())
        return;
    openedAside_ = loop_.uptime();
    prepareToOpen();
    parts_.popover.showAside(parts_.icon.frame());
    if (onPopoverOpen)
        onPopoverOpen();
}

void MenuBarItem::prepareToOpen() {
    parts_.controller.startLiveUpdates();
    if (hideCountdown)
        hideCountdown();
}

void MenuBarItem::popoverDidClose() {
    openedAside_.reset();
    parts_.controller.stopLiveUpdates();
    if (onPopoverClose)
        onPopoverClose();
}

// It is kept in mind before the panel opens: a start that fails over that isn't tried again.
void MenuBarItem::welcome() {
    if (parts_.settings.didShowWelcome)
        return;
    parts_.settings.didShowWelcome.store(true);
    welcome_ = loop_.after(welcomeDelay, [this] { showPopover(); });
}

void MenuBarItem::quitAll(PowerAction then) {
    parts_.controller.quitAll(then);
    showPopover();
}

// A menu that was made a while ago may offer what isn't offered any more.
void MenuBarItem::reopen() {
    if (RunAnswers::isTaken(RunAnswers::Word::reopen, RunAnswers::momentOf(parts_.controller)))
        parts_.controller.reopenLastSession();
}

void MenuBarItem::cancelEnd() {
    const auto moment = RunAnswers::momentOf(parts_.controller, loginWindow_.state);
    if (RunAnswers::isTaken(RunAnswers::Word::cancel, moment))
        parts_.controller.cancelPowerAction();
}

Menu MenuBarItem::menu() {
    return quickMenu(parts_.controller, loginWindow_, parts_.updater, formats_,
                     {.quit = [this](PowerAction then) { quitAll(then); },
                      .reopen = [this] { reopen(); },
                      .cancelSchedule = [this] { parts_.controller.cancelSchedule(); },
                      .cancelEnd = [this] { cancelEnd(); },
                      .checkForUpdates = [this] { parts_.updater.checkForUpdates(); },
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
    parts_.icon.keepMenu(kept_);
}

} // namespace velmorquit
