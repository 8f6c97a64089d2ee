#include "Fuzz/Fuzz.h"
#include "Tools/velmorquit-tmutil/CommandLine.h"

using namespace velmorquit;
using namespace velmorquit::tmutil;

/// The words behind velmorquit-tmutil, a line each.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto read = parseCommandLine(fuzz::split(text, '\n'));
    if (const auto* problem = problemOf(read)) {
        fuzz::require(!problem->sentence.empty(), "what is wrong is said");
        return 0;
    }
    const auto& line = std::get<CommandLine>(read);
    if (line.keep)
        fuzz::require(line.keep->isAny(), "rules keep something");
    for (const std::string& source : line.sources)
        fuzz::require(!source.empty(), "a folder has a name");
    return 0;
}
