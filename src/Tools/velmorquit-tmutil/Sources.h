#pragma once

#include "Problem.h"
#include "Settings.h"

#include <string>
#include <vector>

/// What is backed up, and what is left out.
namespace velmorquit::tmutil::Sources {

/// The folders to back up, by default the home folder. A problem if one doesn't exist, or
/// is inside the place for backups.
[[nodiscard]] Outcome<std::vector<std::string>> resolve(const std::vector<std::string>& names,
                                                        const std::string& place);

/// Everything left out, as restic patterns: caches, wastebaskets and anything not on a disk, unless
/// a source is inside; all places for backups; and the user's own choice.
[[nodiscard]] std::vector<std::string> excludes(const Destination& destination,
                                                const std::vector<Destination>& all);

} // namespace velmorquit::tmutil::Sources
