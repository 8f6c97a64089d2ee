#include "AppDelegate.h"

#include "Platform/Application.h"

#include <utility>
#include <variant>

namespace velmorquit {

AppDelegate::AppDelegate(const Desktop& desktop, const Notices& notices)
    : actions_(desktop.loop, desktop.kernel, desktop.formats), controller_(desktop),
      remoteControl_(controller_, actions_, desktop),
      scheduleNotice_(controller_, notices.schedule, desktop.formats),
      application_(desktop.application),
      trayItem_({.quitAll = [this] { controller_.quitAll(PowerAction::none); },
                 .exit = [this] { end(); }}) {
    actions_.setController(&controller_);
    controller_.onEvent = [this](const Event& event) { hear(event); };
    controller_.onNeedsAttention = [this] {
        remoteControl_.schedule().announceAttention();
        scheduleNotice_.callAttention();
    };
    remoteControl_.onShow = [this](const std::string&) { trayItem_.sayThatItRuns(); };
    RemoteSchedule& published = remoteControl_.schedule();
    published.onConfirm = [this](const std::string& question, const std::string& button,
                                 std::function<void(bool)> answer) {
        confirmDialog_.ask(question, button, std::move(answer));
    };
    published.onAnswer = [&notice = notices.answers](const ActionAnswer& answer) {
        notice.show({.title = "Velmor Quit", .text = answer.text});
    };
}

AppDelegate::~AppDelegate() { actions_.setController(nullptr); }

void AppDelegate::hear(const Event& event) {
    remoteControl_.announce(event);
    if (std::holds_alternative<events::ConfirmationNeeded>(event))
        scheduleNotice_.ask();
}

// What is told of the run's end is posted before the program's own end is.
void AppDelegate::end() {
    controller_.leaveStubbornOpen();
    application_.terminate();
}

} // namespace velmorquit
