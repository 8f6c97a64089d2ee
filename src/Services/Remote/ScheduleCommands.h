#pragma once

#include "Platform/Formats.h"
#include "Platform/RemoteCommands.h"
#include "Services/Actions/ActionRunner.h"
#include "Services/QuitController/QuitController.h"

#include <functional>
#include <string>
#include <vector>

namespace velmorquit {

/// The commands that other processes can give about the scheduled quit and the published actions,
/// and their questions about the computer.
class ScheduleCommands {
public:
    using Words = std::vector<std::string>;

    struct Surroundings {
        QuitController& controller;
        ActionRunner& actions;
        const Formats& formats;
        const Kernel& kernel;
    };

    explicit ScheduleCommands(const Surroundings& surroundings) : surroundings_(surroundings) {}

    /// Asks the user an action's question; until it is set nothing is asked and every such action
    /// counts as declined.
    ActionRunner::Confirm onConfirm;
    /// Shows the user an action's answer.
    std::function<void(const ActionAnswer&)> onAnswer;

    /// `minutes N ACTION`, or `at HH:MM ACTION` for the next time the clock shows that. The action
    /// is the power action's raw value.
    RemoteAnswer schedule(const Words& words);
    RemoteAnswer postpone(const std::string& minutes);
    RemoteAnswer confirm();
    /// Cancels the schedule, and a power action that has not happened yet.
    RemoteAnswer cancel();
    RemoteAnswer memory();
    /// The published actions, with their texts and parameters.
    [[nodiscard]] static RemoteAnswer listActions();
    /// `NAME [minutes=N] [then=CHOICE]`, as published; question and answer appear on the screen.
    RemoteAnswer act(const Words& words);

private:
    Surroundings surroundings_;
};

} // namespace velmorquit
