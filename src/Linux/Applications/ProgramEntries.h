#pragma once

#include "Linux/Applications/RunProgram.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// The words of an entry's command line, without a leading "env" and the variables it sets, and
/// without placeholders for files; empty when it is none.
[[nodiscard]] std::vector<std::string> commandOfEntry(const char* line);

/// The desktop entries that are installed, by the program that they start.
class ProgramEntries {
public:
    /// Reads all entries anew and looks for their programs: some milliseconds.
    void index();

    /// The id, without ".desktop", of the entry that starts the running program; none when there is
    /// none, or several that start it in different ways. Entries not meant for the user are left
    /// out: a guess must not hide a program from the user.
    [[nodiscard]] std::optional<std::string> entryOf(const RunProgram& program) const;

private:
    struct Owner {
        std::string id;
        /// Those that aren't placeholders for files.
        std::vector<std::string> arguments;
        /// It is in no menu, though the user may open files with it.
        bool isInNoMenu = false;
    };
    using Owners = std::map<std::string, std::vector<Owner>>;

    void add(const RunProgram& program, const std::string& calledBy, const Owner& owner);
    [[nodiscard]] static const Owner* ownerIn(const Owners& owners, const std::string& key);

    Owners byPath_;
    /// In lower case.
    Owners byName_;
};

} // namespace velmorquit
