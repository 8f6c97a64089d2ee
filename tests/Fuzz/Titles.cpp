#include "Fuzz/Fuzz.h"
#include "Linux/Applications/MakeshiftName.h"

using namespace velmorquit;

/// The program's name, the window's class and then its title, a line each.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    RunProgram program;
    program.name = input.line();
    const std::string className = input.line();
    const std::string title(input.rest());
    const std::string name = programInTitle(title, program, className);
    fuzz::require(title.find(name) != std::string::npos, "a name is a part of the title");
    fuzz::require(name.empty() || (name.front() != ' ' && name.back() != ' '),
                  "without blanks around it");
    fuzz::require(!fuzz::isUtf8(title) || fuzz::isUtf8(name), "no letter is cut apart");
    fuzz::require(!isOwnWord(className) || !className.empty(), "a word has letters");
    return 0;
}
