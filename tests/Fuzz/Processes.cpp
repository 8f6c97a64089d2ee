#include "Fuzz/Fuzz.h"
#include "Linux/Proc/ControlGroup.h"
#include "Linux/Proc/ProcKernel.h"
#include "Linux/Proc/ProcText.h"
#include "Linux/Proc/ProcessStat.h"

/// A file of /proc. Names of programs, arguments and units are chosen by whoever runs them.
void velmorquit::fuzz::examine(std::string_view bytes) {
    const std::size_t size = bytes.size();
    const std::string text(bytes);
    if (const auto stat = parseProcessStat(text))
        require(stat->command.size() < size, "a name is a part of the line");
    static_cast<void>(footprintFromStatus(text));
    static_cast<void>(ProcText::ignoresHangup(text));
    static_cast<void>(ProcText::numberAt(text, "Uid:"));
    require(ProcText::textAt(text, "model name").size() <= size, "a field is a part of it");
    std::size_t held = 0;
    for (const std::string& part : ProcText::splitAtNul(text))
        held += part.size() + 1;
    require(held <= size + 1, "arguments are parts of the line");
    const std::string_view unit = applicationUnit(text);
    require(text.find(unit) != std::string::npos, "a unit is a part of the path");
    const auto entries = desktopEntriesOfUnit(unit);
    for (const std::string& entry : entries)
        require(entry.size() < unit.size(), "an entry is a part of the unit");
    const std::string sandboxed = sandboxedApplication(unit);
    require(sandboxed.empty() || sandboxed == entries[1], "who is in a sandbox is an entry");
    require(!isAutostarted(text) || !unit.empty(), "what starts with the session has a unit");
    require(!isUserService(text) || unit.empty(), "a service is no application");
}
