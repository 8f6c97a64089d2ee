#pragma once

#include "Texts/Language.h"

#include <QString>
#include <QStringList>

#include <string>
#include <variant>
#include <vector>

namespace velmorquit {

/// What the user asked for on the command line.
struct CommandLine {
    bool wantsHelp = false;
    bool wantsList = false;
    std::vector<Language> languages{Language::italian, Language::english};
    std::vector<int> scales{1, 2}; ///< pixels a point
    QString folder = QStringLiteral("gallery");
    QString sheet;     ///< file for all pictures on one; empty for none
    QStringList names; ///< of pictures; empty for all of them
};

/// Reads the arguments, the program's name left out; a text says what is wrong with them.
[[nodiscard]] std::variant<CommandLine, std::string> parseCommandLine(const QStringList& arguments);

/// How the program is used.
[[nodiscard]] std::string usage();

} // namespace velmorquit
