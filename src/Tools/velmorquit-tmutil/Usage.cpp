#include "Usage.h"

#include "Texts/Localized.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace velmorquit::tmutil {

namespace {

/// Keys of the string table.
constexpr std::pair<std::string_view, const char*> pages[] = {
    {"setup",
     textKey("Uso: velmorquit-tmutil setup DESTINAZIONE [OPZIONI]\n"
             "\n"
             "Fa di una cartella un posto per i backup, di solito su un disco esterno. Una "
             "cartella\n"
             "che non c’è viene creata, quella sopra deve esserci. Una che contiene già un\n"
             "repository di restic viene usata così com’è, senza toccare i backup che vi sono. "
             "Per\n"
             "una destinazione che c’è già cambia solo ciò che è detto nelle opzioni.\n"
             "\n"
             "I backup sono cifrati con una password. Per una destinazione nuova la puoi "
             "scegliere,\n"
             "o lasciarla creare; viene mostrata una volta su un foglio di recupero da tenere\n"
             "lontano dal computer, perché una password che sta solo lì si perde con lui.\n"
             "\n"
             "  --source CARTELLA     che cosa salvare; si può ripetere. Senza: la cartella home\n"
             "  --exclude MODELLO     che cosa lasciare fuori, per esempio '*.iso'; si può "
             "ripetere\n"
             "  --keep-last N         conserva gli ultimi N backup\n"
             "  --keep-daily N        conserva l’ultimo backup di N giorni\n"
             "  --keep-weekly N       conserva l’ultimo backup di N settimane\n"
             "  --keep-monthly N      conserva l’ultimo backup di N mesi\n"
             "  --password-file FILE  prende la password da un file invece di chiederla\n"
             "\n"
             "Senza una regola --keep si conserva tutto. Con una o più, dopo ogni backup riuscito\n"
             "vengono tolti quelli che nessuna conserva, soltanto fra quelli che questo programma\n"
             "ha fatto di queste cartelle su questo computer.\n"
             "Sono sempre esclusi le cache, i cestini, i file system virtuali e le destinazioni\n"
             "stesse. Ciò che è montato dentro una cartella da salvare non ne fa parte.\n"
             "\n"
             "Esempio:\n"
             "  velmorquit-tmutil setup /media/disco/Backup --keep-daily 14 --keep-monthly 12\n")},
    {"startbackup",
     textKey("Uso: velmorquit-tmutil startbackup [--block]\n"
             "\n"
             "Fa un backup su ogni destinazione, una dopo l’altra. Senza --block parte e va "
             "avanti\n"
             "da solo, anche se il terminale si chiude; con --block (o -b) aspetta la fine e lo\n"
             "stato d’uscita dice com’è andata.\n"
             "\n"
             "Una destinazione che non va, per esempio un disco non collegato, non ferma le\n"
             "altre, ma lo stato è 1 e l’ultima riga dice quale. File che non si possono leggere\n"
             "sono detti in un avviso e il backup vale. Intanto il computer non va in stop.\n"
             "Un secondo avvio è rifiutato. Ctrl+C o stopbackup fermano senza danni: ciò che\n"
             "era già copiato non va copiato di nuovo.\n")},
    {"status",
     textKey("Uso: velmorquit-tmutil status [-X]\n"
             "\n"
             "Dice se un backup è in corso, a che punto è, e quando è stato fatto l’ultimo. Con "
             "-X\n"
             "scrive una property list XML per i programmi: Running, un booleano, e durante un\n"
             "backup Percent, un numero da 0 a 1, appena è noto.\n")},
    {"latestbackup",
     textKey("Uso: velmorquit-tmutil latestbackup\n"
             "\n"
             "Scrive la destinazione e la data del backup più recente come un percorso:\n"
             "  DESTINAZIONE/2026-03-02-081500\n"
             "Senza un backup lo stato è 1. L’ultima parte va bene per restore.\n")},
    {"stopbackup", textKey("Uso: velmorquit-tmutil stopbackup\n"
                           "\n"
                           "Ferma il backup in corso e aspetta che sia finito. La destinazione "
                           "resta in ordine e\n"
                           "ciò che era già copiato serve al prossimo backup.\n")},
    {"destinations",
     textKey("Uso: velmorquit-tmutil destinations\n"
             "\n"
             "Elenca le destinazioni: che cosa vi si salva, che cosa si conserva, e in che file è\n"
             "la password.\n")},
    {"remove",
     textKey("Uso: velmorquit-tmutil remove DESTINAZIONE\n"
             "\n"
             "Dimentica una destinazione. I backup che contiene e il file della password restano;\n"
             "con setup la si può usare di nuovo.\n")},
    {"list",
     textKey("Uso: velmorquit-tmutil list\n"
             "\n"
             "Elenca i backup di tutte le destinazioni collegate, anche quelli di altri computer:\n"
             "data, identificativo, computer, cartelle.\n")},
    {"restore",
     textKey("Uso: velmorquit-tmutil restore BACKUP [PERCORSO] --to CARTELLA\n"
             "\n"
             "Riprende da un backup tutto, o solo un file o una cartella, dentro CARTELLA, che\n"
             "dev’essere nuova o vuota: niente di ciò che hai viene sovrascritto. Lì dentro ogni\n"
             "cosa conserva il suo percorso: /home/anna/nota.txt diventa\n"
             "CARTELLA/home/anna/nota.txt.\n"
             "\n"
             "BACKUP è una data come la scrive list (2026-03-02-081500), un identificativo, o\n"
             "latest per il più recente.\n"
             "\n"
             "Esempio:\n"
             "  velmorquit-tmutil restore latest ~/nota.txt --to ~/ripreso\n")},
    {"check",
     textKey("Uso: velmorquit-tmutil check [--read-data]\n"
             "\n"
             "Controlla ogni destinazione: che tutto ci sia, e che i dati siano leggibili e\n"
             "integri. Legge fino a 1 GB di dati, ogni volta altri; con --read-data tutti, il che\n"
             "può durare ore. Lo stato è 1 se qualcosa è danneggiato o non collegato.\n")},
};

} // namespace

std::string usage() {
    return localized(
        "Uso: velmorquit-tmutil COMANDO\n"
        "\n"
        "  setup DESTINAZIONE      fa di una cartella un posto per i backup\n"
        "  startbackup [--block]   fa un backup; con --block aspetta la fine\n"
        "  status [-X]             se un backup è in corso e a che punto è\n"
        "  stopbackup              ferma il backup in corso\n"
        "  latestbackup            dov’è il backup più recente\n"
        "  list                    i backup che ci sono\n"
        "  restore BACKUP [PERCORSO] --to CARTELLA\n"
        "                          riprende tutto, o un file o una cartella\n"
        "  check [--read-data]     controlla che i backup siano integri\n"
        "  destinations            le destinazioni\n"
        "  remove DESTINAZIONE     dimentica una destinazione, senza cancellarla\n"
        "  help [COMANDO]          tutto su un comando\n"
        "\n"
        "Per cominciare basta un disco con una cartella per i backup:\n"
        "  velmorquit-tmutil setup /media/disco/Backup\n"
        "  velmorquit-tmutil startbackup --block\n"
        "\n"
        "Stato d’uscita: 0 fatto, 1 non fatto o non del tutto, 2 uso sbagliato.\n"
        "File: backups.plist in ~/.config/velmorquit (le destinazioni), e lì nella cartella\n"
        "passwords le password; backup.log in ~/.local/state/velmorquit (l’ultimo backup partito\n"
        "senza --block). I backup sono di restic: si aprono anche con restic da solo.\n");
}

std::string usage(const std::string& command) {
    const auto* const page =
        std::ranges::find(pages, command, &std::pair<std::string_view, const char*>::first);
    return page == std::end(pages) ? usage() : localized(page->second);
}

} // namespace velmorquit::tmutil
