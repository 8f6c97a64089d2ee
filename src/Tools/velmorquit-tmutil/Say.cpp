#include "Say.h"

#include "Texts/Shown.h"

#include <iostream>

namespace velmorquit::tmutil {

void say(const std::string& line) { std::cout << shownLines(line) << std::endl; }

// The last line is taken as the reason by programs that start this one, so it must be complete.
void warn(const std::string& line) {
    constexpr std::size_t longest = 4000;
    std::cerr << shownText(line, longest) << std::endl;
}

ExitStatus fail(const Problem& problem) {
    warn(problem.sentence);
    return ExitStatus::failure;
}

} // namespace velmorquit::tmutil
