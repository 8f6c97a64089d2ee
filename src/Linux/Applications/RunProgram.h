#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmorquit {

/// The program that a command line runs: the executable itself, or the input of an interpreter.
struct RunProgram {
    /// The file, absolute and without symbolic links; empty when there is none, as for a module of
    /// an interpreter.
    std::string path;
    /// The name for the user: the file's name without folders and extension. UTF-8.
    std::string name;
    /// Its own arguments, without options of the interpreter.
    std::vector<std::string> arguments;

    /// An interpreter without input, or one that runs anything it is told: its program isn't
    /// known.
    [[nodiscard]] bool isUnknown() const { return name.empty(); }
};

/// `executable` is the running file; `arguments` are all of them, the command itself first. Names
/// without a folder are looked for in `folder`. Resolves the files' real paths.
[[nodiscard]] RunProgram programOf(const std::string& executable,
                                   const std::vector<std::string>& arguments,
                                   const std::string& folder);

/// Whether it is a name shared by all kinds of programs: that of an interpreter or a launcher, a
/// toolkit's name for windows without one, or simply "main".
[[nodiscard]] bool isCommonName(std::string_view name);

/// The name without one of the usual extensions of programs.
[[nodiscard]] std::string withoutExtension(std::string_view fileName);

/// In lower case as far as ASCII letters are concerned.
[[nodiscard]] std::string lowered(std::string text);

} // namespace velmorquit
