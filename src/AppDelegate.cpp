#include "AppDelegate.h"

#include "Platform/Application.h"

namespace velmorquit {

AppDelegate::AppDelegate(const Desktop& desktop)
    : controller_(desktop), remoteControl_(controller_, desktop.remote, desktop.workspace),
      application_(desktop.application),
      trayItem_({.quitAll = [this] { controller_.quitAll(PowerAction::none); },
                 .exit = [this] { end(); }}) {
    controller_.onEvent = [this](const Event& event) { remoteControl_.announce(event); };
    remoteControl_.onShow = [this](const std::string&) { trayItem_.sayThatItRuns(); };
}

// What is told of the run's end is posted before the program's own end is.
void AppDelegate::end() {
    controller_.leaveStubbornOpen();
    application_.terminate();
}

} // namespace velmorquit
