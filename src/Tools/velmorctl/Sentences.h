#pragma once

#include "Platform/Formats.h"

#include <QJsonObject>
#include <QString>

#include <string>

namespace velmorquit {

/// The answer to `status` for a person: a line on the run, a table, and what can be
/// reopened.
[[nodiscard]] std::string statusText(const QJsonObject& status, const Formats& formats);

/// The answer to `actions` for a person.
[[nodiscard]] std::string actionsText(const QJsonObject& answer);

/// A change for a person; empty for one that says nothing that another doesn't.
[[nodiscard]] std::string changeText(const QJsonObject& change, const Formats& formats);

/// The question asked before a run that something follows, with the letters to answer it with.
[[nodiscard]] std::string confirmationQuestion(qsizetype count, const QString& then);

} // namespace velmorquit
