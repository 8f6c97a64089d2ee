#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// What a command line runs: a program of its own, or what an interpreter was given to read.
struct RunProgram {
    /// The file, absolute and without symbolic links; empty when there is none, as for a module of
    /// an interpreter.
    std::string path;
    /// What a person would call it: the file's name without folders and extension. UTF-8.
    std::string name;
    /// What it was given itself: no options of the interpreter.
    std::vector<std::string> arguments;

    /// An interpreter without anything to read, or one that starts whatever it is told: nobody's
    /// program, so nothing is known.
    [[nodiscard]] bool isUnknown() const { return name.empty(); }
};

/// `executable` is the file that runs, `arguments` all of them, the command itself first; what has
/// no folder in front is in `folder`. Looks for the files' real places.
[[nodiscard]] RunProgram programOf(const std::string& executable,
                                   const std::vector<std::string>& arguments,
                                   const std::string& folder);

/// Whether it is a name that programs of every kind go by: that of an interpreter, of a launcher,
/// of what a toolkit calls windows that have no name, or simply "main".
[[nodiscard]] bool isCommonName(std::string_view name);

/// The name without one of the extensions that programs have.
[[nodiscard]] std::string withoutExtension(std::string_view fileName);

/// Without the letter's case where it is one of ASCII's.
[[nodiscard]] std::string lowered(std::string text);

} // namespace velmorquit
