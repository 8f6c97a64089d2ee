#include "Fuzz/Fuzz.h"
#include "Linux/Proc/ControlGroup.h"
#include "Linux/Proc/ProcKernel.h"
#include "Linux/Proc/ProcText.h"
#include "Linux/Proc/ProcessStat.h"

/// A file of /proc. Names of programs, arguments and units are chosen by whoever runs them.
void velmorquit::fuzz::examine(std::string_view bytes) {
    const std::string text(bytes);
    static_cast<void>(parseProcessStat(text));
    static_cast<void>(footprintFromStatus(text));
    static_cast<void>(ProcText::ignoresHangup(text));
    static_cast<void>(ProcText::numberAt(text, "Uid:"));
    static_cast<void>(ProcText::textAt(text, "model name"));
    static_cast<void>(ProcText::splitAtNul(text));
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
