#pragma once

#include "Texts/Language.h"

#include <QString>
#include <QStringList>

#include <string>
#include <variant>
#include <vector>

namespace velmorquit {

/// The user's request on the command line.
struct CommandLine {
    bool wantsHelp = false;
    bool wantsList = false;
    std::vector<Language> languages{Language::italian, Language::english};
    std::vector<int> scales{1, 2}; ///< pixels per point
    QString folder = QStringLiteral("gallery");
    QString sheet;     ///< file for all pictures on one sheet; empty for none
    QStringList names; ///< names of pictures; empty for all of them
};

/// Reads the arguments without the program's name; a text says what is wrong with them.
[[nodiscard]] std::variant<CommandLine, std::string> parseCommandLine(const QStringList& arguments);

/// How the program is used.
[[nodiscard]] std::string usage();

} // namespace velmorquit
