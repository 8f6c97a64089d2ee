#include "Fuzz/Fuzz.h"
#include "Tools/velmorquit-tmutil/CommandLine.h"

using namespace velmorquit::tmutil;

/// The words behind velmorquit-tmutil, a line each.
void velmorquit::fuzz::examine(std::string_view bytes) {
    const auto read = parseCommandLine(split(bytes, '\n'));
    if (const auto* problem = problemOf(read)) {
        require(!problem->sentence.empty(), "what is wrong is said");
        return;
    }
    const auto& line = std::get<CommandLine>(read);
    if (line.keep)
        require(line.keep->isAny(), "rules keep something");
    for (const std::string& source : line.sources)
        require(!source.empty(), "a folder has a name");
}
