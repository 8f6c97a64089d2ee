#pragma once

#include <string>

/// velmorctl's output and questions. Any program that owns the name on the bus may have sent the
/// texts: control sequences are removed.
namespace velmorquit::Terminal {

void print(const std::string& text);

/// On a line of its own, escaped where necessary.
void printJson(const std::string& json);

/// On standard error.
void complain(const std::string& why);

/// Whether there is a user to ask.
[[nodiscard]] bool hasUser();

/// Asks the user at the terminal, and waits for the answer; the end of input means
/// no.
[[nodiscard]] bool isAgreed(const std::string& question);

} // namespace velmorquit::Terminal
