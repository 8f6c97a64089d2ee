#pragma once

#include "Model/AfterQuit.h"
#include "Platform/Formats.h"
#include "Remote/AnswerJson.h"
#include "Remote/ChangeJson.h"

#include <string>
#include <vector>

namespace velmorquit {

/// The answer to `status` for a person: a line on the run, a table, and what can be reopened.
[[nodiscard]] std::string statusText(const remote::Status& status, const Formats& formats);

/// The answer to `actions` for a person.
[[nodiscard]] std::string actionsText(const std::vector<remote::PublishedAction>& actions);

/// A change for a person; empty for one that says nothing that another doesn't.
[[nodiscard]] std::string changeText(const remote::Change& change, const Formats& formats);

/// The question asked before a run that something follows, with the letters to answer it with.
[[nodiscard]] std::string confirmationQuestion(std::size_t count, AfterQuit then);

} // namespace velmorquit
