#include "Fuzz/Fuzz.h"
#include "Linux/Proc/ControlGroup.h"
#include "Linux/Proc/ProcKernel.h"
#include "Linux/Proc/ProcText.h"
#include "Linux/Proc/ProcessStat.h"

using namespace velmorquit;

/// A file of /proc. Names of programs, arguments and units are chosen by whoever runs them.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (const auto stat = parseProcessStat(text))
        fuzz::require(stat->command.size() < size, "a name is a part of the line");
    static_cast<void>(footprintFromStatus(text));
    static_cast<void>(ProcText::ignoresHangup(text));
    static_cast<void>(ProcText::numberAt(text, "Uid:"));
    fuzz::require(ProcText::textAt(text, "model name").size() <= size, "a field is a part of it");
    std::size_t held = 0;
    for (const std::string& part : ProcText::splitAtNul(text))
        held += part.size() + 1;
    fuzz::require(held <= size + 1, "arguments are parts of the line");
    const std::string_view unit = applicationUnit(text);
    fuzz::require(text.find(unit) != std::string::npos, "a unit is a part of the path");
    const auto entries = desktopEntriesOfUnit(unit);
    for (const std::string& entry : entries)
        fuzz::require(entry.size() < unit.size(), "an entry is a part of the unit");
    const std::string sandboxed = sandboxedApplication(unit);
    fuzz::require(sandboxed.empty() || sandboxed == entries[1], "who is in a sandbox is an entry");
    fuzz::require(!isAutostarted(text) || !unit.empty(), "what starts with the session has a unit");
    fuzz::require(!isUserService(text) || unit.empty(), "a service is no application");
    return 0;
}
