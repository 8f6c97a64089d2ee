#include "AppDelegate.h"

#include "Platform/Application.h"

namespace velmorquit {

AppDelegate::AppDelegate(const Desktop& desktop)
    : controller_(desktop), remoteControl_(controller_, desktop.remote, desktop.workspace),
      trayItem_({.quitAll = [this] { controller_.quitAll(PowerAction::none); },
                 .exit = [&application = desktop.application] { application.terminate(); }}) {
    controller_.onEvent = [this](const Event& event) { remoteControl_.announce(event); };
}

} // namespace velmorquit
