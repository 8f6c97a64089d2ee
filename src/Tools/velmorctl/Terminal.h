#pragma once

#include <string>

/// What velmorctl says, and whom it asks. Whoever holds the program's name on the bus may have sent
/// anything: what a terminal would obey is taken out.
namespace velmorquit::Terminal {

void print(const std::string& text);

/// On a line of its own, escaped where it has to be.
void printJson(const std::string& json);

/// On standard error.
void complain(const std::string& why);

/// Whether somebody can be asked.
[[nodiscard]] bool hasUser();

/// Puts a question to whoever sits at the terminal, and waits for the answer; without one it is a
/// no.
[[nodiscard]] bool isAgreed(const std::string& question);

} // namespace velmorquit::Terminal
