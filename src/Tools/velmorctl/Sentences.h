#pragma once

#include "Model/AfterQuit.h"
#include "Platform/Formats.h"
#include "Remote/AnswerJson.h"
#include "Remote/ChangeJson.h"

#include <string>
#include <vector>

namespace velmorquit {

/// The answer to `status` for the user: a line on the run, a table, and what can be reopened.
[[nodiscard]] std::string statusText(const remote::Status& status, const Formats& formats);

/// The answer to `actions` for the user.
[[nodiscard]] std::string actionsText(const std::vector<remote::PublishedAction>& actions);

/// A change for the user; empty for one that adds nothing to another change.
[[nodiscard]] std::string changeText(const remote::Change& change, const Formats& formats);

/// The question before a run with an action after it, with the letters for the answer.
[[nodiscard]] std::string confirmationQuestion(std::size_t count, AfterQuit then);

} // namespace velmorquit
