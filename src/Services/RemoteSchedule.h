#pragma once

#include "Platform/Formats.h"
#include "Platform/RemoteCommands.h"
#include "Services/Actions/ActionRunner.h"
#include "Services/QuitController/QuitController.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// What other processes can do with the scheduled quit and the published actions.
///
/// Verbs: `schedule minutes N ACTION` and `schedule at HH:MM ACTION` (the next time the clock shows
/// that; ACTION as the power action's raw value), `postpone N` (minutes), `confirm`, `cancel` (the
/// schedule, and a power action that has not happened yet), `memory`, `actions` (those that are
/// published, with their texts and parameters), `action NAME [minutes=N] [then=CHOICE]` (as
/// published: a question and the answer are shown on the screen). Changes: `schedule` (with the
/// `schedule`, or null), `attention` (`seconds` left), `scheduleNote`.
class RemoteSchedule {
public:
    using Json = nlohmann::ordered_json;
    using Announce = std::function<void(const Json&)>;

    struct Surroundings {
        QuitController& controller;
        ActionRunner& actions;
        const Formats& formats;
        const Kernel& kernel;
    };

    RemoteSchedule(const Surroundings& surroundings, Announce announce);

    /// Puts the question of an action to the user; until it is set nothing is asked and every such
    /// action counts as declined.
    ActionRunner::Confirm onConfirm;
    /// Shows the user what an action has to say.
    std::function<void(const ActionAnswer&)> onAnswer;

    /// None when the verb is another one.
    [[nodiscard]] std::optional<RemoteAnswer> answer(const RemoteCommand& command);

    /// The schedule as others see it, null without one.
    [[nodiscard]] Json describe() const;

private:
    RemoteAnswer schedule(const std::vector<std::string>& arguments);
    RemoteAnswer postpone(const std::string& minutes);
    RemoteAnswer confirm();
    RemoteAnswer cancel();
    RemoteAnswer memory();
    [[nodiscard]] static RemoteAnswer listActions();
    RemoteAnswer act(const std::vector<std::string>& arguments);
    void announceAttention();

    Surroundings surroundings_;
    Announce announce_;
    Json known_; ///< what was told of the schedule last
    std::vector<Handle> subscriptions_;
};

} // namespace velmorquit
