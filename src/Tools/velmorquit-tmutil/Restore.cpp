#include "Restore.h"

#include "Reports.h"
#include "Say.h"
#include "Stamp.h"
#include "Texts/Localized.h"

#include <filesystem>

#include <sys/stat.h>

namespace velmorquit::tmutil {

namespace fs = std::filesystem;

namespace {

/// A snapshot and its destination.
struct Found {
    Destination destination;
    Snapshot snapshot;
};

/// "latest" means this computer's, so that nobody restores another one's files by mistake; in a
/// destination without any of these it is the newest of all.
bool isBetterLatest(const Found& candidate, const Found& best) {
    const auto isOwn = [](const Found& found) {
        return found.snapshot.isOurs && found.snapshot.host == found.destination.host;
    };
    if (isOwn(candidate) != isOwn(best))
        return isOwn(candidate);
    return candidate.snapshot.date >= best.snapshot.date;
}

/// A snapshot may be named by a stamp, a path that ends with one, or the beginning of its id.
bool isNamed(const Snapshot& snapshot, const std::string& name) {
    const std::string last = name.substr(name.rfind('/') + 1);
    constexpr std::size_t shortest = 4;
    return stampOf(snapshot.date) == last ||
           (name.size() >= shortest && snapshot.id.starts_with(name));
}

Outcome<Found> find(const std::string& name, Restic& restic) {
    const auto loaded = Settings::loadSome();
    if (const auto* problem = problemOf(loaded))
        return *problem;
    std::optional<Found> best;
    std::optional<Problem> obstacle;
    for (const Destination& destination : std::get<std::vector<Destination>>(loaded)) {
        const auto read = snapshotsIn(destination, restic);
        if (const auto* problem = problemOf(read)) {
            obstacle = *problem;
            continue;
        }
        for (const Snapshot& snapshot : std::get<std::vector<Snapshot>>(read)) {
            const Found found{destination, snapshot};
            if (name != "latest" && isNamed(snapshot, name))
                return found;
            if (name == "latest" && (!best || isBetterLatest(found, *best)))
                best = found;
        }
    }
    if (best)
        return *best;
    if (obstacle)
        return *obstacle;
    if (name == "latest")
        return Problem{localized("Non c’è ancora nessun backup.")};
    return Problem{localized("Non c’è un backup %@: velmorquit-tmutil list li elenca.", name)};
}

/// The folder to restore to. It is removed again if nothing was restored.
class Target {
public:
    explicit Target(const std::string& name) : path_(withoutSlash(name)) {}
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;
    ~Target() {
        std::error_code error;
        if (isMade_)
            fs::remove(path_, error);
    }

    /// A path without a slash at its end.
    static fs::path withoutSlash(const std::string& name) {
        std::error_code error;
        const fs::path path = fs::absolute(name, error).lexically_normal();
        return path.has_filename() || path == "/" ? path : path.parent_path();
    }

    /// Creates it; a problem if it exists and isn't empty.
    std::optional<Problem> prepare() {
        std::error_code error;
        const bool isThere = fs::exists(fs::symlink_status(path_, error));
        if (isThere && (!fs::is_directory(path_, error) || !fs::is_empty(path_, error)))
            return Problem{
                localized("%@ c’è già e non è vuota: scegli una cartella nuova.", path_.string())};
        isMade_ = !isThere && ::mkdir(path_.c_str(), 0700) == 0;
        if (!isThere && !isMade_)
            return Problem{localized("Non posso creare la cartella %@.", path_.string())};
        return std::nullopt;
    }

    [[nodiscard]] std::string path() const { return path_.string(); }

private:
    fs::path path_;
    bool isMade_ = false;
};

/// restic prints a line for everything that it could not write or set.
std::size_t ignoredIn(const std::string& errors) {
    std::size_t count = 0;
    for (auto at = errors.find("ignoring error"); at != errors.npos;
         at = errors.find("ignoring error", at + 1))
        ++count;
    return count;
}

} // namespace

ExitStatus restore(const CommandLine& line, Restic& restic) {
    const auto found = find(line.names.front(), restic);
    if (const auto* problem = problemOf(found))
        return fail(*problem);
    Target target(line.to);
    if (const auto problem = target.prepare())
        return fail(*problem);
    const auto& [destination, snapshot] = std::get<Found>(found);
    const Repository repository(restic, destination.path, destination.passwordFile);
    std::vector<std::string> arguments{"restore", snapshot.id, "--no-lock",
                                       "--target=" + target.path()};
    std::string wanted;
    if (line.names.size() > 1)
        wanted = Target::withoutSlash(line.names[1]).string();
    if (!wanted.empty() && wanted != "/")
        arguments.push_back("--include=" + escapedPattern(wanted));
    const ResticEnd end = repository.run(std::move(arguments));
    const std::string result = target.path() + wanted;
    std::error_code error;
    if (end.isGood() && !fs::exists(fs::symlink_status(result, error)))
        return fail({localized("In quel backup %@ non c’è.", wanted)});
    const auto ignored = ignoredIn(end.errors);
    if (!end.isGood() && (end.isStopped || ignored == 0))
        return fail(repository.problem(end));
    say(localized("Ripristinato dal backup %@: %@", stampOf(snapshot.date), result));
    if (ignored > 0)
        return fail({localized("Non tutto è stato ripristinato com’era. %@",
                               repository.problem(end).sentence)});
    return ExitStatus::success;
}

} // namespace velmorquit::tmutil
