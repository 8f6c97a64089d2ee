#include "AppDelegate.h"

#include "Platform/Application.h"
#include "Platform/LoginWindow.h"
#include "Services/Panel/SettingsMenu.h"
#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"
#include "Views/PanelView.h"

#include <functional>
#include <utility>

namespace velmorquit {

AppDelegate::AppDelegate(const Desktop& desktop, const DesktopFace& face, const Notices& notices)
    : desktop_(desktop), settings_(desktop.loop, desktop.preferences),
      actions_(desktop.loop, desktop.kernel, desktop.formats), controller_(desktop, settings_),
      updater_(desktop.loop), remoteControl_(controller_, actions_, desktop),
      scheduleNotice_(controller_, notices.schedule, desktop.formats),
      endNotice_(desktop.loop, desktop.loginWindow, notices.end),
      runNotice_(controller_, notices.run, desktop.formats), trayItem_(face),
      looks_(face.appearance),
      popover_({desktop.loop, face, looks_}, std::bind_front(&AppDelegate::makePanel, this),
               std::bind_front(&QuitController::isRunning, &controller_)),
      menuBarItem_({controller_, updater_, settings_, trayItem_, popover_}, desktop) {
    actions_.setController(&controller_);
    endNotice_.onCancel = [this] { controller_.cancelPowerAction(); };
    menuBarItem_.onExit = [this] { askThenEnd(); };
    serveOthers(notices.answers);
    tellOfWaits();
    menuBarItem_.welcome();
}

AppDelegate::~AppDelegate() { actions_.setController(nullptr); }

void AppDelegate::serveOthers(Notice& answers) {
    remoteControl_.onShow = [this](const std::string&) { menuBarItem_.showPopover(); };
    ScheduleCommands& published = remoteControl_.schedule();
    published.onConfirm = [this](const std::string& question, const std::string& button,
                                 std::function<void(bool)> answer) {
        // A double click on the yes to a caller must not also answer the question it leads to.
        constexpr Duration moment = 3s;
        const bool followsAnother =
            callerAgreedAt_ && desktop_.loop.uptime() - *callerAgreedAt_ < moment;
        confirmDialog_.ask(question, button, std::move(answer),
                           followsAnother ? ConfirmDialog::Manner::unbidden
                                          : ConfirmDialog::Manner::wanted);
    };
    remoteControl_.callerQuestion().screen = {
        .ask =
            [this](const std::string& question, const std::string& button,
                   std::function<void(bool)> answer) {
                callerDialog_.ask(
                    question, button,
                    [this, answer = std::move(answer)](bool isYes) {
                        if (isYes)
                            callerAgreedAt_ = desktop_.loop.uptime();
                        answer(isYes);
                    },
                    ConfirmDialog::Manner::unbidden);
            },
        .withdraw = [this] { callerDialog_.withdraw(); }};
    published.onAnswer = [&answers](const ActionAnswer& answer) {
        answers.show({.title = "Velmor Quit", .text = answer.text});
    };
}

void AppDelegate::tellOfWaits() {
    menuBarItem_.onPopoverOpen = [this] { runNotice_.panelOpened(); };
    menuBarItem_.onPopoverClose = [this] { runNotice_.panelClosed(); };
    runNotice_.onShow = [this] { menuBarItem_.showPopover(); };
    const auto showPanel = [this] { menuBarItem_.showPopoverAside(); };
    runNotice_.onUnanswerable = showPanel;
    endNotice_.onUnanswerable = showPanel;
    scheduleNotice_.onUnanswerable = showPanel;
}

std::unique_ptr<PanelView> AppDelegate::makePanel() {
    return std::make_unique<PanelView>(controller_, updater_, desktop_, [this] {
        return settingsMenu(settings_, updater_, [this] { askThenEnd(); });
    });
}

// A requested end of the session is lost with the program, so the user is told.
void AppDelegate::askThenEnd() {
    const EndState& state = desktop_.loginWindow.state;
    if (!state.isComing()) {
        end();
        return;
    }
    confirmDialog_.ask(localized("%@: se esci da Velmor Quit non succederà. Esci lo stesso?",
                                 EndTexts::title(state)),
                       localized("Esci da Velmor Quit"), [this](bool isAgreed) {
                           if (isAgreed)
                               end();
                       });
}

// News of the run's end is posted before the program's own end.
void AppDelegate::end() {
    controller_.leaveStubbornOpen();
    desktop_.application.terminate();
}

} // namespace velmorquit
