#pragma once

#include "Repository.h"

#include <optional>

namespace velmorquit::Retention {

/// Removes the backups that the destination's rules don't keep, from the repository and from the
/// record. Only those of this tool, this computer and these folders are looked at.
[[nodiscard]] std::optional<Problem> apply(const Repository& repository,
                                           const Destination& destination);

} // namespace velmorquit::Retention
