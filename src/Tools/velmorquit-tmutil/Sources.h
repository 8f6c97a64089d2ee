#pragma once

#include "Problem.h"
#include "Settings.h"

#include <string>
#include <vector>

/// What is backed up, and what is left out of it.
namespace velmorquit::tmutil::Sources {

/// The folders themselves, the home folder where none is named. A problem when one isn't there, or
/// lies in the place for backups.
[[nodiscard]] Outcome<std::vector<std::string>> resolve(const std::vector<std::string>& names,
                                                        const std::string& place);

/// What is left out, as patterns of restic's: caches, wastebaskets and what isn't on a disk, unless
/// a source lies in there; all places for backups; what the user leaves out.
[[nodiscard]] std::vector<std::string> excludes(const Destination& destination,
                                                const std::vector<Destination>& all);

} // namespace velmorquit::tmutil::Sources
