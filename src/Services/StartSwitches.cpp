#include "Services/StartSwitches.h"

#include "Texts/Localized.h"
#include "Texts/Version.h"

#include <algorithm>

namespace velmorquit::StartSwitches {

namespace {

std::string usage() {
    return localized(
        "Uso: velmorquit [OPZIONE]\n"
        "\n"
        "Senza opzioni parte e mette la sua icona nell'area di notifica; se è già in esecuzione\n"
        "apre il suo pannello.\n"
        "\n"
        "  --enable-launch-at-login   da ora in poi parte con la sessione\n"
        "  --disable-launch-at-login  non parte più con la sessione\n"
        "  --help                     mostra questo testo\n"
        "  --version                  mostra la versione\n"
        "\n"
        "Dal terminale la si comanda con velmorctl: velmorctl --help dice come.");
}

} // namespace

std::optional<std::string> answer(const std::vector<std::string>& arguments) {
    const auto isGiven = [&](std::string_view word) {
        return !arguments.empty() &&
               std::find(arguments.begin() + 1, arguments.end(), word) != arguments.end();
    };
    if (isGiven("--help") || isGiven("-h"))
        return usage();
    return isGiven("--version") ? std::optional(versionLine("velmorquit")) : std::nullopt;
}

std::string unknownLine(const std::vector<std::string>& unknown) {
    std::string line = unknown.size() == 1 ? "Velmor Quit: argomento sconosciuto, lo ignoro:"
                                           : "Velmor Quit: argomenti sconosciuti, li ignoro:";
    for (const std::string& argument : unknown)
        line += ' ' + argument;
    // It must remain one line whatever the arguments contain.
    constexpr unsigned char firstPrintable = 0x20;
    constexpr unsigned char deletion = 0x7F;
    std::ranges::replace_if(
        line, [](unsigned char letter) { return letter < firstPrintable || letter == deletion; },
        '?');
    return line + " (velmorquit --help)";
}

} // namespace velmorquit::StartSwitches
