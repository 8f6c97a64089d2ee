#include "CommandLine.h"

#include "Texts/Localized.h"

#include <QMap>

#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace velmorquit {

namespace {

using Command = CommandLine::Command;

const QMap<QString, Command>& commands() {
    static const QMap<QString, Command> words{
        {"help", Command::help},
        {"--help", Command::help},
        {"-h", Command::help},
        {"--version", Command::version},
        {"status", Command::status},
        {"watch", Command::watch},
        {"quit-all", Command::quitAll},
        {"force", Command::force},
        {"leave", Command::leave},
        {"exclude", Command::exclude},
        {"include", Command::include},
        {"show", Command::show},
        {"backup", Command::backup},
        {"eject", Command::eject},
        {"cancel", Command::cancel},
        {"reopen", Command::reopen},
        {"forget", Command::forget},
        {"schedule", Command::schedule},
        {"postpone", Command::postpone},
        {"confirm", Command::confirm},
        {"actions", Command::actions},
        {"memory", Command::memory},
        {"action", Command::action},
        {"anyway", Command::anyway},
        {"ask-again", Command::askAgain},
    };
    return words;
}

/// Takes what follows an option that says when.
std::optional<std::string> takeMoment(CommandLine& line, const QString& option, QStringList& rest) {
    if (!line.moment.isEmpty())
        return localized("schedule vuole --minutes oppure --at, una volta sola");
    if (rest.isEmpty())
        return localized("%@ vuole un valore", option.toStdString());
    line.moment = option.mid(2);
    line.time = rest.takeFirst();
    return std::nullopt;
}

/// Takes what follows an option that says how long.
std::optional<std::string> takeTimeout(CommandLine& line, QStringList& rest) {
    // What a timer can wait for at the most.
    constexpr double longest = std::numeric_limits<int>::max() / 1000;
    bool isNumber = false;
    const double seconds = rest.isEmpty() ? 0 : rest.takeFirst().toDouble(&isNumber);
    // A comparison with what is no number is never true.
    if (!isNumber || !(seconds > 0 && seconds <= longest))
        return localized("--timeout vuole un numero di secondi, maggiore di zero");
    line.timeout = std::chrono::milliseconds(std::llround(std::ceil(1000 * seconds)));
    return std::nullopt;
}

/// Takes the option at the front of `rest`; a text says what is wrong with it.
std::optional<std::string> takeOption(CommandLine& line, QStringList& rest) {
    const QString option = rest.takeFirst();
    const bool isQuitAll = line.command == Command::quitAll;
    const bool isSchedule = line.command == Command::schedule;
    const bool isReport = line.command == Command::status || line.command == Command::watch ||
                          line.command == Command::memory || line.command == Command::actions;
    if (option == "--json" && isReport) {
        line.wantsJson = true;
        return std::nullopt;
    }
    if (option == "--yes" && isQuitAll) {
        line.isConfirmed = true;
        return std::nullopt;
    }
    if (option == "--no-wait" && isQuitAll) {
        line.endsWithRun = true;
        return std::nullopt;
    }
    if (option == "--timeout" && isQuitAll)
        return takeTimeout(line, rest);
    if ((option == "--minutes" || option == "--at") && isSchedule)
        return takeMoment(line, option, rest);
    if (option != "--then" || !(isQuitAll || isSchedule))
        return localized("opzione sconosciuta: %@", option.toStdString());
    static const QStringList choices{"nothing", "shutDown", "restart", "logOut"};
    if (rest.isEmpty() || !choices.contains(rest.first()))
        return localized("--then vuole una di queste parole: %@", choices.join(", ").toStdString());
    line.then = rest.takeFirst();
    return std::nullopt;
}

/// Takes the words that belong to the command itself; a text says what is wrong with them.
std::optional<std::string> takeWords(CommandLine& line, QStringList& rest) {
    if (line.command == Command::backup) {
        static const QStringList words{"skip", "cancel", "continue", "stop"};
        if (rest.size() != 1 || !words.contains(rest.first()))
            return localized("backup vuole una di queste parole: %@",
                             words.join(", ").toStdString());
        line.word = rest.takeFirst();
    }
    if (line.command == Command::askAgain) {
        line.name = rest.join(' ').trimmed();
        rest.clear();
    }
    if (line.command == Command::postpone)
        line.time = rest.isEmpty() ? QStringLiteral("10") : rest.takeFirst();
    if (line.command == Command::schedule)
        line.then = QStringLiteral("shutDown");
    if (line.command == Command::action) {
        if (rest.isEmpty())
            return localized("action vuole il nome di un'azione");
        line.arguments = std::exchange(rest, {});
    }
    return std::nullopt;
}

} // namespace

std::variant<CommandLine, std::string> parseCommandLine(const QStringList& arguments) {
    if (arguments.isEmpty())
        return localized("manca il comando");
    QStringList rest = arguments;
    const QString word = rest.takeFirst();
    if (!commands().contains(word))
        return localized("comando sconosciuto: %@", word.toStdString());

    CommandLine line;
    line.command = commands().value(word);
    const bool takesName = line.command == Command::exclude || line.command == Command::include;
    if (takesName) {
        // A name may begin with a hyphen and have blanks: all that follows is the name.
        line.name = rest.join(' ').trimmed();
        if (line.name.isEmpty())
            return localized("%@ vuole il nome di un'app", word.toStdString());
        return line;
    }
    if (const auto wrong = takeWords(line, rest))
        return *wrong;
    while (!rest.isEmpty()) {
        if (const auto wrong = takeOption(line, rest))
            return *wrong;
    }
    if (line.command == Command::schedule && line.moment.isEmpty())
        return localized("schedule vuole --minutes oppure --at, una volta sola");
    return line;
}

std::string usage() {
    return localized(
        "Uso: velmorctl COMANDO\n"
        "\n"
        "  status [--json]      che cosa è aperto e a che punto è la chiusura\n"
        "  watch [--json]       una riga per ogni cambiamento, fino a Ctrl+C\n"
        "  quit-all [--then nothing|shutDown|restart|logOut] [--yes] [--no-wait] [--timeout S]\n"
        "                       chiede a tutte le app non escluse di chiudersi e aspetta la fine;\n"
        "                       con --then aspetta anche lo spegnimento, il riavvio o l'uscita, "
        "se\n"
        "                       non dici --no-wait; con --timeout per S secondi al massimo\n"
        "  ask-again [NOME]     chiede di nuovo di chiudersi a un'app rimasta aperta\n"
        "  force                forza le app rimaste aperte: ciò che non è salvato va perso\n"
        "  leave                lascia aperte le app rimaste e finisce qui\n"
        "  exclude NOME         non chiudere mai quest'app (nome, id o numero di processo)\n"
        "  include NOME         torna a chiuderla\n"
        "  backup skip|cancel   ferma il backup e va avanti, o chiude qui\n"
        "  backup continue|stop dopo un backup non riuscito: va avanti, o si ferma\n"
        "  eject                espelle i dischi esterni\n"
        "  schedule --minutes N|--at HH:MM [--then nothing|shutDown|restart|logOut]\n"
        "                       programma la chiusura; poi spegne, se non dici altro\n"
        "  postpone [N]         la rimanda di N minuti, o di 10\n"
        "  confirm              la fa partire, quando aspetta una conferma\n"
        "  cancel               la annulla; rinuncia anche a spegnere, riavviare o uscire\n"
        "  anyway               spegne, riavvia o esce anche se resta aperto qualcosa: dice che\n"
        "                       cosa, e chiede conferma\n"
        "  memory [--json]      quanta memoria è in uso\n"
        "  actions [--json]     le azioni che si possono chiedere da fuori\n"
        "  action NOME [minutes=N] [then=SCELTA]\n"
        "                       una di quelle: domande e risposte sullo schermo\n"
        "  reopen               riapre in secondo piano le app dell'ultima chiusura\n"
        "  forget               dimentica quali erano\n"
        "  show                 apre il pannello\n"
        "  --help, --version    questo testo; la versione\n"
        "\n"
        "Stato d'uscita: 0 fatto, 1 rifiutato o qualcosa è rimasto aperto o collegato, 2 uso\n"
        "sbagliato, 3 Velmor Quit non è in esecuzione, 4 tempo scaduto, 5 un altro programma ha "
        "il\n"
        "suo nome, 6 da una sandbox: prima serve un sì sullo schermo, 130 Ctrl+C.\n");
}

} // namespace velmorquit
