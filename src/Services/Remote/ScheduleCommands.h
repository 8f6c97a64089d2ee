#pragma once

#include "Platform/Formats.h"
#include "Platform/RemoteCommands.h"
#include "Services/Actions/ActionRunner.h"
#include "Services/QuitController/QuitController.h"

#include <functional>
#include <string>
#include <vector>

namespace velmorquit {

/// What other processes can do with the scheduled quit and the published actions, and what they can
/// ask about the computer.
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

    /// Puts the question of an action to the user; until it is set nothing is asked and every such
    /// action counts as declined.
    ActionRunner::Confirm onConfirm;
    /// Shows the user what an action has to say.
    std::function<void(const ActionAnswer&)> onAnswer;

    /// `minutes N ACTION` or `at HH:MM ACTION`: the next time the clock shows that. The action is
    /// the power action's raw value.
    RemoteAnswer schedule(const Words& words);
    RemoteAnswer postpone(const std::string& minutes);
    RemoteAnswer confirm();
    /// The schedule, and a power action that has not happened yet.
    RemoteAnswer cancel();
    RemoteAnswer memory();
    /// Those that are published, with their texts and parameters.
    [[nodiscard]] static RemoteAnswer listActions();
    /// `NAME [minutes=N] [then=CHOICE]`, as published: question and answer are shown on the screen.
    RemoteAnswer act(const Words& words);

private:
    Surroundings surroundings_;
};

} // namespace velmorquit
