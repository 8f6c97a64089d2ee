#include "Fuzz/Fuzz.h"
#include "Linux/Applications/ProgramEntries.h"

/// The command line of an entry.
void velmorquit::fuzz::examine(std::string_view bytes) {
    const std::string line(bytes);
    const std::vector<std::string> command = commandOfEntry(line.c_str());
    if (command.empty())
        return;
    const RunProgram program = programOf("", command, "/nonexistent");
    require(isUtf8(program.name), "a name is a text");
}
