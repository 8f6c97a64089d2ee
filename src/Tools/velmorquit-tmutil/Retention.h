#pragma once

#include "Repository.h"

#include <optional>
#include <string>
#include <vector>

namespace velmorquit::tmutil::Retention {

/// The arguments that make restic remove backups of this tool, of the destination's computer and of
/// the same folders, beyond those that its rules keep.
[[nodiscard]] std::vector<std::string> arguments(const Destination& destination);

/// Removes the removed snapshots from the record, which may hold only the beginnings of their ids.
void strike(Destination& recorded, const std::vector<std::string>& removed);

/// Removes the backups that the destination's rules don't keep from the repository and from the
/// record. Only those of this tool, this computer and these folders are considered.
[[nodiscard]] std::optional<Problem> apply(const Repository& repository,
                                           const Destination& destination);

} // namespace velmorquit::tmutil::Retention
