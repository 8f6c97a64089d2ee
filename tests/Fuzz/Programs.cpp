#include "Fuzz/Fuzz.h"
#include "Linux/Applications/RunProgram.h"

using namespace velmorquit;

/// The executable, the folder and then the arguments, a line each.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::string executable = input.line();
    const std::string folder = input.line();
    const std::vector<std::string> arguments = fuzz::split(input.rest(), '\n');
    const RunProgram program = programOf(executable, arguments, folder);
    fuzz::require(fuzz::isUtf8(program.name), "a name is a text");
    fuzz::require(program.name.size() <= 2 * size, "and no longer than what it is made of");
    fuzz::require(program.path.empty() || program.path.front() == '/', "a path is absolute");
    fuzz::require(program.arguments.size() < arguments.size(), "its arguments are among all");
    static_cast<void>(isCommonName(executable));
    return 0;
}
