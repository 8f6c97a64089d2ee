#include "Say.h"

#include <iostream>

namespace velmorquit {

void say(const std::string& line) { std::cout << line << std::endl; }

void warn(const std::string& line) { std::cerr << line << std::endl; }

ExitStatus fail(const Problem& problem) {
    warn(problem.sentence);
    return ExitStatus::failure;
}

} // namespace velmorquit
