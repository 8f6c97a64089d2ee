#include "CommandLine.h"
#include "Texts/Localized.h"

#include <algorithm>

namespace velmorquit {

namespace {

/// Columns of the terminal, and the column where explanations begin.
constexpr std::size_t width = 79;
constexpr std::size_t margin = 23;

std::size_t lengthOf(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

/// The words as lines, all but the first beginning at the margin.
std::string laidOut(std::string_view text) {
    std::string lines;
    std::size_t column = margin;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (column > margin && column + 1 + lengthOf(word) > width) {
            lines += '\n' + std::string(margin, ' ');
            column = margin;
        } else if (column > margin) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += lengthOf(word);
    }
    return lines + '\n';
}

std::string explained(const remote::Command& command) {
    std::string line = "  " + localized(command.usage);
    const std::size_t length = lengthOf(line);
    line += length < margin ? std::string(margin - length, ' ') : '\n' + std::string(margin, ' ');
    return line + laidOut(localized(command.help));
}

} // namespace

std::string usage() {
    std::string text = localized("Uso: velmorctl COMANDO") + "\n\n";
    for (const remote::Command& command : remote::commands())
        text += explained(command);
    return text + '\n' +
           localized("Un comando o il nome di un'app si può accorciare, finché è chiaro quale.") +
           "\n\n" +
           localized("Stato d'uscita: 0 fatto, 1 rifiutato o qualcosa è rimasto aperto o "
                     "collegato, 2 uso\n"
                     "sbagliato, 3 Velmor Quit non è in esecuzione, 4 tempo scaduto, 5 un altro "
                     "programma ha il\n"
                     "suo nome, 6 da una sandbox: prima serve un sì sullo schermo, 130 Ctrl+C.\n");
}

} // namespace velmorquit
