#pragma once

#include "Repository.h"

#include <optional>
#include <string>
#include <vector>

namespace velmorquit::tmutil::Retention {

/// The words by which restic is told what to remove: backups of this tool, of the destination's
/// computer and of the same folders, beyond what its rules keep.
[[nodiscard]] std::vector<std::string> arguments(const Destination& destination);

/// Takes those that were removed off the record, which may have only the beginnings of their ids.
void strike(Destination& recorded, const std::vector<std::string>& removed);

/// Removes the backups that the destination's rules don't keep, from the repository and from the
/// record. Only those of this tool, this computer and these folders are looked at.
[[nodiscard]] std::optional<Problem> apply(const Repository& repository,
                                           const Destination& destination);

} // namespace velmorquit::tmutil::Retention
