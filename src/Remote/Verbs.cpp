#include "Remote/Verbs.h"

#include "Remote/Shortened.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <array>

namespace velmorquit::remote {

namespace {

constexpr const char* quitsAll = textKey("chiudere tutte le app");
constexpr const char* schedules =
    textKey("programmare la chiusura di tutte le app, e poi spegnere, riavviare o uscire");
constexpr const char* reopens = textKey("riaprire le app di prima");

constexpr std::array anybody{Meaning{}};
constexpr std::array quitAllMeanings{
    Meaning{.is = "shutDown",
            .word = Word::quitAll,
            .request = textKey("chiudere tutte le app e poi spegnere il computer")},
    Meaning{.is = "restart",
            .word = Word::quitAll,
            .request = textKey("chiudere tutte le app e poi riavviare il computer")},
    Meaning{.is = "logOut",
            .word = Word::quitAll,
            .request = textKey("chiudere tutte le app e poi uscire dalla sessione")},
    Meaning{.word = Word::quitAll, .request = quitsAll}};
constexpr std::array quitMeanings{
    Meaning{.word = Word::quitAll, .request = textKey("chiudere %@")}};
constexpr std::array askAgainMeanings{
    Meaning{.word = Word::askAgain, .request = textKey("chiedere di nuovo alle app di chiudersi")}};
constexpr std::array forceMeanings{Meaning{
    .word = Word::force,
    .request = textKey("terminare a forza le app rimaste aperte: ciò che non è salvato va perso")}};
constexpr std::array leaveMeanings{Meaning{.word = Word::leave, .isAlwaysTaken = true}};
constexpr std::array excludeMeanings{Meaning{.request = textKey("non chiudere più un'app")}};
constexpr std::array includeMeanings{
    Meaning{.request = textKey("chiudere di nuovo un'app esclusa")}};
constexpr std::array backupMeanings{
    Meaning{.is = "skip", .word = Word::endBackup, .request = textKey("saltare il backup")},
    Meaning{.is = "cancel",
            .word = Word::endBackup,
            .request = textKey("fermare il backup"),
            .isAlwaysTaken = true},
    Meaning{.is = "continue",
            .word = Word::answerFailure,
            .request = textKey("andare avanti senza backup")},
    Meaning{.is = "stop",
            .word = Word::answerFailure,
            .request = textKey("fermare il backup"),
            .isAlwaysTaken = true}};
constexpr std::array ejectMeanings{Meaning{.request = textKey("espellere i dischi esterni")}};
constexpr std::array scheduleMeanings{
    Meaning{.at = 2, .is = "none", .request = textKey("programmare la chiusura di tutte le app")},
    Meaning{.request = schedules}};
constexpr std::array postponeMeanings{
    Meaning{.word = Word::postponeSchedule, .isAlwaysTaken = true}};
constexpr std::array confirmMeanings{Meaning{
    .word = Word::confirmSchedule, .request = textKey("cominciare la chiusura programmata")}};
constexpr std::array cancelMeanings{Meaning{.word = Word::cancel, .isAlwaysTaken = true}};
constexpr std::array anywayMeanings{Meaning{
    .word = Word::endAnyway,
    .request = textKey("passare sopra a ciò che resta aperto: ciò che non è salvato va perso")}};
constexpr std::array actionMeanings{Meaning{.is = "quit-all", .request = quitsAll},
                                    Meaning{.is = "schedule-quit", .request = schedules},
                                    Meaning{.is = "reopen-apps", .request = reopens},
                                    Meaning{.is = "cancel-schedule"}, Meaning{.is = "memory"}};
constexpr std::array reopenMeanings{Meaning{.word = Word::reopen, .request = reopens}};
constexpr std::array forgetMeanings{Meaning{.request = textKey("dimenticare le app da riaprire")}};

constexpr std::array table{
    Command{.verb = Verb::status,
            .name = "status",
            .control = "status",
            .meanings = anybody,
            .options = Option::json,
            .reply = Reply::own,
            .usage = "status [--json]",
            .help = textKey("che cosa è aperto e a che punto è la chiusura")},
    Command{.verb = Verb::watch,
            .control = "watch",
            .options = Option::json,
            .reply = Reply::own,
            .usage = "watch [--json]",
            .help = textKey("una riga per ogni cambiamento, fino a Ctrl+C")},
    Command{.verb = Verb::quitAll,
            .name = "quitAll",
            .control = "quit-all",
            .most = 1,
            .meanings = quitAllMeanings,
            .options = Option::then | Option::yes | Option::noWait | Option::timeout,
            .reply = Reply::own,
            .startsProgram = true,
            .usage = "quit-all [--then nothing|shutDown|restart|logOut] [--yes] [--no-wait] "
                     "[--timeout S]",
            .help = textKey("chiede a tutte le app non escluse di chiudersi e aspetta la fine; con "
                            "--then aspetta anche lo spegnimento, il riavvio o l'uscita, se non "
                            "dici --no-wait; con --timeout per S secondi al massimo")},
    Command{.verb = Verb::quit,
            .name = "quit",
            .control = "quit",
            .fewest = 1,
            .most = 1000,
            .meanings = quitMeanings,
            .words = Words::names,
            .reply = Reply::text,
            .usage = textKey("quit NOME…"),
            .help = textKey("chiede di chiudersi solo a queste app, anche se sono escluse")},
    Command{.verb = Verb::askAgain,
            .name = "askAgain",
            .control = "ask-again",
            .most = 1,
            .meanings = askAgainMeanings,
            .words = Words::optionalName,
            .reply = Reply::text,
            .usage = textKey("ask-again [NOME]"),
            .help = textKey("chiede di nuovo di chiudersi a un'app rimasta aperta")},
    Command{.verb = Verb::force,
            .name = "force",
            .control = "force",
            .meanings = forceMeanings,
            .usage = "force",
            .help = textKey("forza le app rimaste aperte: ciò che non è salvato va perso")},
    Command{.verb = Verb::leave,
            .name = "leave",
            .control = "leave",
            .meanings = leaveMeanings,
            .usage = "leave",
            .help = textKey("lascia aperte le app rimaste e finisce qui")},
    Command{.verb = Verb::exclude,
            .name = "exclude",
            .control = "exclude",
            .fewest = 1,
            .most = 1,
            .meanings = excludeMeanings,
            .words = Words::name,
            .usage = textKey("exclude NOME"),
            .help = textKey("non chiudere mai quest'app (nome, id o numero di processo)")},
    Command{.verb = Verb::include,
            .name = "include",
            .control = "include",
            .fewest = 1,
            .most = 1,
            .meanings = includeMeanings,
            .words = Words::name,
            .usage = textKey("include NOME"),
            .help = textKey("torna a chiuderla")},
    Command{.verb = Verb::backup,
            .name = "backup",
            .control = "backup",
            .fewest = 1,
            .most = 1,
            .meanings = backupMeanings,
            .words = Words::choice,
            .usage = "backup skip|cancel|continue|stop",
            .help = textKey("skip ferma il backup e va avanti, cancel finisce qui; dopo un backup "
                            "non riuscito continue va avanti, stop si ferma")},
    Command{.verb = Verb::eject,
            .name = "eject",
            .control = "eject",
            .meanings = ejectMeanings,
            .reply = Reply::own,
            .usage = "eject",
            .help = textKey("espelle i dischi esterni")},
    Command{.verb = Verb::schedule,
            .name = "schedule",
            .control = "schedule",
            .fewest = 3,
            .most = 3,
            .meanings = scheduleMeanings,
            .options = Option::moment | Option::then,
            .reply = Reply::text,
            .startsProgram = true,
            .usage = "schedule --minutes N|--at HH:MM [--then nothing|shutDown|restart|logOut]",
            .help = textKey("programma la chiusura; poi spegne, se non dici altro")},
    Command{.verb = Verb::postpone,
            .name = "postpone",
            .control = "postpone",
            .fewest = 1,
            .most = 1,
            .meanings = postponeMeanings,
            .words = Words::minutes,
            .reply = Reply::text,
            .usage = "postpone [N]",
            .help = textKey("la rimanda di N minuti, o di 10")},
    Command{.verb = Verb::confirm,
            .name = "confirm",
            .control = "confirm",
            .meanings = confirmMeanings,
            .reply = Reply::text,
            .usage = "confirm",
            .help = textKey("la fa partire, quando aspetta una conferma")},
    Command{.verb = Verb::cancel,
            .name = "cancel",
            .control = "cancel",
            .meanings = cancelMeanings,
            .reply = Reply::text,
            .usage = "cancel",
            .help = textKey("la annulla; rinuncia anche a spegnere, riavviare o uscire")},
    Command{.verb = Verb::anyway,
            .name = "anyway",
            .control = "anyway",
            .fewest = 1,
            .most = 1,
            .meanings = anywayMeanings,
            .reply = Reply::own,
            .usage = "anyway",
            .help = textKey("spegne, riavvia o esce anche se resta aperto qualcosa: dice che cosa, "
                            "e chiede conferma")},
    Command{.verb = Verb::memory,
            .name = "memory",
            .control = "memory",
            .meanings = anybody,
            .options = Option::json,
            .reply = Reply::text,
            .startsProgram = true,
            .usage = "memory [--json]",
            .help = textKey("quanta memoria è in uso")},
    Command{.verb = Verb::actions,
            .name = "actions",
            .control = "actions",
            .meanings = anybody,
            .options = Option::json,
            .reply = Reply::own,
            .usage = "actions [--json]",
            .help = textKey("le azioni che si possono chiedere da fuori")},
    Command{.verb = Verb::action,
            .name = "action",
            .control = "action",
            .fewest = 1,
            .most = 1000,
            .meanings = actionMeanings,
            .words = Words::all,
            .startsProgram = true,
            .usage = textKey("action NOME [minutes=N] [then=SCELTA]"),
            .help = textKey("una di quelle: domande e risposte sullo schermo")},
    Command{.verb = Verb::reopen,
            .name = "reopen",
            .control = "reopen",
            .meanings = reopenMeanings,
            .reply = Reply::text,
            .startsProgram = true,
            .usage = "reopen",
            .help = textKey("riapre in secondo piano le app dell'ultima chiusura")},
    Command{.verb = Verb::forget,
            .name = "forget",
            .control = "forget",
            .meanings = forgetMeanings,
            .usage = "forget",
            .help = textKey("dimentica quali erano")},
    Command{.verb = Verb::show,
            .name = "show",
            .control = "show",
            .most = 1,
            .meanings = anybody,
            .reply = Reply::own,
            .usage = "show",
            .help = textKey("apre il pannello")},
    Command{.verb = Verb::help,
            .control = "help",
            .reply = Reply::own,
            .usage = "help, --help",
            .help = textKey("questo testo")},
    Command{.verb = Verb::version,
            .control = "--version",
            .reply = Reply::own,
            .usage = "--version",
            .help = textKey("la versione")},
};

} // namespace

std::span<const Command> commands() { return table; }

const Command& commandOf(Verb verb) { return *std::ranges::find(table, verb, &Command::verb); }

const Command* find(const RemoteCommand& command) {
    const std::size_t count = command.arguments.size();
    const auto found = std::ranges::find_if(table, [&](const Command& one) {
        return !one.name.empty() && one.name == command.verb && count >= one.fewest &&
               count <= one.most;
    });
    return found == table.end() ? nullptr : &*found;
}

const Meaning* meaningOf(const RemoteCommand& command) {
    const Command* const known = find(command);
    if (!known)
        return nullptr;
    const auto& words = command.arguments;
    const auto found = std::ranges::find_if(known->meanings, [&](const Meaning& one) {
        return one.is.empty() || (one.at < words.size() && words[one.at] == one.is);
    });
    return found == known->meanings.end() ? nullptr : &*found;
}

std::vector<const Command*> controlCommands(std::string_view word) {
    if (word == "-h" || word == "--help")
        return {&commandOf(Verb::help)};
    std::vector<const Command*> found;
    for (const Command& command : table) {
        if (command.control == word)
            return {&command};
        if (!command.control.starts_with('-') && isShortFor(word, command.control))
            found.push_back(&command);
    }
    return found;
}

} // namespace velmorquit::remote
