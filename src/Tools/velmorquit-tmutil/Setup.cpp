#include "Setup.h"

#include "Password.h"
#include "Repository.h"
#include "Say.h"
#include "Sources.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace velmorquit::tmutil {

namespace fs = std::filesystem;

namespace {

/// The content of a place for backups before the setup.
enum class Found { nothing, repository, otherThings };

Found lookAt(const fs::path& folder) {
    if (Repository::isAt(folder))
        return Found::repository;
    // The last four are left behind by an interrupted setup.
    static constexpr std::array<std::string_view, 7> harmless{
        "lost+found", "keys", "locks", "tmp", "data", "index", "snapshots"};
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        if (std::ranges::find(harmless, at->path().filename().string()) == harmless.end())
            return Found::otherThings;
    }
    return error ? Found::otherThings : Found::nothing;
}

/// The folder's own path. Only the folder itself is created if need be: its parent may be missing
/// because a disk isn't plugged in.
Outcome<std::string> placeAt(const std::string& name) {
    std::error_code error;
    const fs::path path = fs::absolute(name, error).lexically_normal();
    const fs::path folder = path.has_filename() ? path : path.parent_path();
    if (!fs::exists(folder, error) && ::mkdir(folder.c_str(), 0700) != 0)
        return Problem{
            localized("Non posso creare la cartella %@: il disco è collegato?", folder.string())};
    const fs::path place = fs::canonical(folder, error);
    if (error || !fs::is_directory(place, error))
        return Problem{localized("%@ non è una cartella.", folder.string())};
    return place.string();
}

/// A password for a new repository, typed by the user or generated.
Outcome<std::string> newPassword() {
    if (!::isatty(STDIN_FILENO))
        return Password::make();
    for (;;) {
        const auto password =
            Password::ask(localized("Password nuova per i backup (Invio: ne creo una io):"));
        if (!password)
            return Problem{localized("Annullato.")};
        if (password->empty())
            return Password::make();
        const auto again = Password::ask(localized("Ancora una volta:"));
        if (again == password)
            return *password;
        say(localized("Le due password non sono uguali."));
    }
}

Outcome<std::string> passwordFor(const CommandLine& line, const std::string& place, Found found) {
    if (!line.passwordFile.empty())
        return Password::read(line.passwordFile);
    if (found != Found::repository)
        return newPassword();
    if (!::isatty(STDIN_FILENO))
        return Problem{localized("In %@ ci sono già dei backup: per usarli serve la loro password, "
                                 "con --password-file FILE.",
                                 place)};
    auto password =
        Password::ask(localized("In %@ ci sono già dei backup. La loro password:", place));
    if (!password || password->empty())
        return Problem{localized("Annullato.")};
    return *std::move(password);
}

void printRecoverySheet(const Destination& destination, const std::string& password) {
    say(localized("\n"
                  "──────────────── FOGLIO DI RECUPERO ────────────────\n"
                  "Stampalo o copialo, e tienilo LONTANO da questo computer: se il computer si\n"
                  "perde o si rompe, senza la password i backup non si aprono più. Non viene\n"
                  "mostrato un’altra volta.\n"
                  "\n"
                  "  Destinazione   %@\n"
                  "  Repository     %@\n"
                  "  Password       %@\n"
                  "\n"
                  "Per riavere i file su un altro computer:\n"
                  "  1. installa restic (per esempio: sudo apt install restic)\n"
                  "  2. collega il disco; CARTELLA è il posto in cui lì si trova la destinazione\n"
                  "  3. restic -r CARTELLA snapshots\n"
                  "  4. restic -r CARTELLA restore latest --target CARTELLA_NUOVA\n"
                  "restic chiede la password: è quella scritta qui.\n"
                  "─────────────────────────────────────────────────────\n",
                  destination.path, destination.id,
                  // Output that isn't read on a terminal may end up in a log.
                  ::isatty(STDOUT_FILENO)
                      ? password
                      : localized("quella nel file %@", destination.passwordFile)));
    if (!::isatty(STDOUT_FILENO))
        warn(localized("Sul foglio manca la password: copia il file %@ FUORI da questo computer.",
                       destination.passwordFile));
}

/// Opens the repository with the destination's path and password file, and fills in its details.
std::optional<Problem> join(Destination& destination, Restic& restic) {
    const Repository repository(restic, destination.path, destination.passwordFile);
    const auto id = repository.id();
    if (const auto* problem = problemOf(id))
        return *problem;
    destination.id = std::get<std::string>(id);
    const auto snapshots = repository.snapshots();
    if (const auto* problem = problemOf(snapshots))
        return *problem;
    for (const Snapshot& snapshot : std::get<std::vector<Snapshot>>(snapshots)) {
        if (snapshot.isOurs && snapshot.host == destination.host)
            destination.snapshots.push_back({snapshot.id, snapshot.date});
    }
    return std::nullopt;
}

/// Keeps the existing destination's settings where the command line leaves them open.
void merge(Destination& into, const Destination& made, const CommandLine& line) {
    Destination merged = made;
    merged.host = into.host;
    if (line.sources.empty())
        merged.sources = into.sources;
    if (line.excludes.empty())
        merged.excludes = into.excludes;
    if (!line.keep)
        merged.keep = into.keep;
    if (merged.snapshots.empty())
        merged.snapshots = into.snapshots;
    into = merged;
}

std::optional<Problem> record(const Destination& made, const CommandLine& line) {
    return Settings::change([&](std::vector<Destination>& destinations) {
        const auto same = std::ranges::find(destinations, made.id, &Destination::id);
        if (same == destinations.end())
            destinations.push_back(made);
        else
            merge(*same, made, line);
    });
}

/// The recorded password of the place; none for a new place.
std::string knownPasswordFile(const std::vector<Destination>& destinations,
                              const std::string& place) {
    const auto known = std::ranges::find(destinations, place, &Destination::path);
    std::error_code error;
    return known != destinations.end() && fs::exists(known->passwordFile, error)
               ? known->passwordFile
               : std::string();
}

void describe(const Destination& destination, bool isKnown) {
    say(isKnown ? localized("Destinazione aggiornata: %@", destination.path)
                : localized("Destinazione pronta: %@", destination.path));
    for (const std::string& source : destination.sources)
        say(localized("  viene salvata la cartella %@", source));
    say(localized("  la password è anche nel file %@", destination.passwordFile));
    say(localized("Il primo backup: velmorquit-tmutil startbackup --block"));
}

ExitStatus establish(const CommandLine& line, Destination destination, Found found,
                     Restic& restic) {
    std::string password;
    const bool isKnown = !destination.passwordFile.empty();
    if (!isKnown) {
        const auto given = passwordFor(line, destination.path, found);
        if (const auto* problem = problemOf(given))
            return fail(*problem);
        password = std::get<std::string>(given);
        const auto file = Password::keep(password);
        if (const auto* problem = problemOf(file))
            return fail(*problem);
        destination.passwordFile = std::get<fs::path>(file).string();
    }
    std::optional<Problem> problem;
    if (found == Found::nothing) {
        say(localized("Preparo la destinazione…"));
        problem = Repository(restic, destination.path, destination.passwordFile).create();
    }
    if (!problem)
        problem = join(destination, restic);
    // The password of a new repository is kept, whatever failed after that.
    const bool isOfNoUse =
        !isKnown && (found == Found::repository || !Repository::isAt(destination.path));
    if (problem && isOfNoUse)
        fs::remove(destination.passwordFile);
    if (!problem)
        problem = record(destination, line);
    if (found == Found::nothing && !destination.id.empty())
        printRecoverySheet(destination, password);
    if (problem)
        return fail(*problem);
    describe(destination, isKnown);
    return ExitStatus::success;
}

} // namespace

ExitStatus setUp(const CommandLine& line, Restic& restic) {
    const auto known = Settings::load();
    if (const auto* problem = problemOf(known))
        return fail(*problem);
    const auto place = placeAt(line.names.front());
    if (const auto* problem = problemOf(place))
        return fail(*problem);
    Destination destination{.path = std::get<std::string>(place),
                            .id = {},
                            .host = hostName(),
                            .passwordFile = {},
                            .sources = {},
                            .excludes = line.excludes,
                            .keep = line.keep.value_or(KeepRules()),
                            .snapshots = {}};
    const auto sources = Sources::resolve(line.sources, destination.path);
    if (const auto* problem = problemOf(sources))
        return fail(*problem);
    destination.sources = std::get<std::vector<std::string>>(sources);
    const Found found = lookAt(destination.path);
    if (found == Found::otherThings)
        return fail({localized("In %@ ci sono già altre cose: scegli una cartella nuova, per "
                               "esempio %@/Backup.",
                               destination.path, destination.path)});
    if (found == Found::repository && line.passwordFile.empty())
        destination.passwordFile =
            knownPasswordFile(std::get<std::vector<Destination>>(known), destination.path);
    return establish(line, std::move(destination), found, restic);
}

} // namespace velmorquit::tmutil
