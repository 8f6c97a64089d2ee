#include "Fuzz/Fuzz.h"
#include "Linux/Applications/ProgramEntries.h"

using namespace velmorquit;

/// The command line of an entry.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string line(reinterpret_cast<const char*>(data), size);
    const std::vector<std::string> command = commandOfEntry(line.c_str());
    std::size_t held = 0;
    for (const std::string& word : command)
        held += word.size();
    fuzz::require(held <= size, "the words are parts of the line");
    if (command.empty())
        return 0;
    const RunProgram program = programOf("", command, "/nonexistent");
    fuzz::require(fuzz::isUtf8(program.name), "a name is a text");
    return 0;
}
