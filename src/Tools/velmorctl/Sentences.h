#pragma once

#include <QJsonObject>
#include <QString>

namespace velmorquit {

/// The answer to `status` for a person: a sentence, then a table.
[[nodiscard]] QString statusText(const QJsonObject& status);

/// A change for a person; empty for one that says nothing that another doesn't.
[[nodiscard]] QString changeText(const QJsonObject& change);

/// The question asked before a run that something follows.
[[nodiscard]] QString confirmationQuestion(qsizetype count, const QString& then);

/// A line on what was not done of what should have followed; empty for "nothing".
[[nodiscard]] QString nothingFollowedText(const QString& then);

} // namespace velmorquit
