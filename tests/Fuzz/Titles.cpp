#include "Fuzz/Fuzz.h"
#include "Linux/Applications/MakeshiftName.h"

/// The program's name, the window's class and then its title, a line each.
void velmorquit::fuzz::examine(std::string_view bytes) {
    Input input(bytes);
    RunProgram program;
    program.name = input.line();
    const std::string className = input.line();
    const std::string title(input.rest());
    const std::string name = programInTitle(title, program, className);
    require(title.find(name) != std::string::npos, "a name is a part of the title");
    require(name.empty() || (name.front() != ' ' && name.back() != ' '),
            "without blanks around it");
    require(!isUtf8(title) || isUtf8(name), "no letter is cut apart");
    static_cast<void>(isOwnWord(className));
}
