#include "Services/QuitController/RunStatus.h"

namespace velmorquit {

RunStatus::RunStatus(const Desktop& desktop)
    : phase(desktop.loop), stubborn(desktop.loop), stayReasons(desktop.loop),
      resultNote(desktop.loop), unattended(desktop.loop), autoContinueAt(desktop.loop),
      pendingAction(desktop.loop), runningAction(desktop.loop), loop_(desktop.loop) {}

void RunStatus::begin(PowerAction action, Attendance attendance) {
    ++number_;
    hiding_.reset();
    end();
    unattended = attendance == Attendance::unattended;
    pendingAction = action;
    stubborn = {};
    resultNote = std::nullopt;
}

PowerAction RunStatus::endWaiting() {
    const PowerAction planned = pendingAction;
    pendingAction = PowerAction::none;
    return planned;
}

void RunStatus::dropAction() {
    pendingAction = PowerAction::none;
    runningAction = PowerAction::none;
}

void RunStatus::show(RunResult result, std::optional<std::string> note) {
    phase = phases::Done{result.closed, result.freed, number_};
    resultNote = std::move(note);
    hiding_ = loop_.after(resultTime, [this] {
        phase = phases::Idle{};
        resultNote = std::nullopt;
    });
}

void RunStatus::end() {
    unattended = false;
    autoContinueAt = std::nullopt;
    runningAction = PowerAction::none;
}

} // namespace velmorquit
