#include "Fuzz/Fuzz.h"
#include "Linux/Applications/RunProgram.h"

/// The executable, the folder and then the arguments, a line each.
void velmorquit::fuzz::examine(std::string_view bytes) {
    Input input(bytes);
    const std::string executable = input.line();
    const std::string folder = input.line();
    const std::vector<std::string> arguments = split(input.rest(), '\n');
    const RunProgram program = programOf(executable, arguments, folder);
    require(isUtf8(program.name), "a name is a text");
    require(program.name.size() <= 2 * bytes.size(), "and no longer than what it is made of");
    require(program.path.empty() || program.path.front() == '/', "a path is absolute");
    require(program.arguments.size() < arguments.size(), "its arguments are among all");
    static_cast<void>(isCommonName(executable));
}
