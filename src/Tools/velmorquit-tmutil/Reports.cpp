#include "Reports.h"

#include "Codecs/PropertyList.h"
#include "RunningBackup.h"
#include "Say.h"
#include "Stamp.h"
#include "Texts/Joined.h"
#include "Texts/Localized.h"
#include "Texts/Shown.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <iostream>

#include <unistd.h>

namespace velmorquit::tmutil {

namespace fs = std::filesystem;

namespace {

using Destinations = std::vector<Destination>;

std::string runningText() {
    const auto process = RunningBackup::process();
    if (!process)
        return localized("Nessun backup in corso.");
    const auto fraction = RunningBackup::fraction(*process);
    return fraction ? localized("Backup in corso: %lld%%.", std::lround(100 * *fraction))
                    : localized("Backup in corso.");
}

std::string rulesText(const KeepRules& keep) {
    if (!keep.isAny())
        return localized("tutti");
    std::vector<std::string> rules;
    const auto add = [&](std::int64_t count, const char* key) {
        if (count > 0)
            rules.push_back(localized(key, count));
    };
    add(keep.last, textKey("gli ultimi %lld"));
    add(keep.daily, textKey("%lld giornalieri"));
    add(keep.weekly, textKey("%lld settimanali"));
    add(keep.monthly, textKey("%lld mensili"));
    return joined(rules);
}

std::string shownList(const std::vector<std::string>& texts) {
    constexpr std::size_t longest = 4096;
    return joined(texts, ", ", [](const std::string& text) { return shownText(text, longest); });
}

bool isSame(const SnapshotRecord& record, const Snapshot& snapshot) {
    return !record.id.empty() && snapshot.id.starts_with(record.id);
}

bool isOfThisComputer(const Snapshot& snapshot, const Destination& destination) {
    return snapshot.isOurs && snapshot.host == destination.host;
}

/// The present snapshots of the repository, as a record.
std::vector<SnapshotRecord> recordOf(const std::vector<Snapshot>& snapshots,
                                     const Destination& destination) {
    std::vector<SnapshotRecord> record;
    for (const Snapshot& snapshot : snapshots) {
        if (isOfThisComputer(snapshot, destination))
            record.push_back({snapshot.id, snapshot.date});
    }
    return record;
}

} // namespace

void printStatusList() {
    Value::Dictionary status{{"Running", false}};
    if (const auto process = RunningBackup::process()) {
        status.insert_or_assign("Running", true);
        if (const auto fraction = RunningBackup::fraction(*process))
            status.insert_or_assign("Percent", *fraction);
    }
    std::cout << PropertyList::encode(status) << std::flush;
}

ExitStatus printStatus(const Formats& formats) {
    say(runningText());
    const auto loaded = Settings::load();
    if (const auto* problem = problemOf(loaded))
        return fail(*problem);
    const auto& destinations = std::get<Destinations>(loaded);
    if (destinations.empty())
        say(localized("Non c’è ancora una destinazione per i backup: "
                      "velmorquit-tmutil setup CARTELLA"));
    const WallTime now = std::chrono::system_clock::now();
    for (const Destination& destination : destinations) {
        const auto latest = destination.latest();
        say(latest ? localized("%@: ultimo backup %@", destination.path,
                               formats.relativeDate(*latest, now))
                   : localized("%@: ancora nessun backup", destination.path));
    }
    return ExitStatus::success;
}

ExitStatus printLatestBackup() {
    const auto loaded = Settings::load();
    if (const auto* problem = problemOf(loaded))
        return fail(*problem);
    const Destination* newest = nullptr;
    for (const Destination& destination : std::get<Destinations>(loaded)) {
        if (destination.latest() && (!newest || *destination.latest() > *newest->latest()))
            newest = &destination;
    }
    if (!newest)
        return fail({localized("Non c’è ancora nessun backup.")});
    const std::string path = pathOf(*newest, *newest->latest());
    // A script gets the folder's exact name.
    if (::isatty(STDOUT_FILENO))
        say(path);
    else
        std::cout << path << std::endl;
    return ExitStatus::success;
}

ExitStatus printDestinations() {
    const auto loaded = Settings::load();
    if (const auto* problem = problemOf(loaded))
        return fail(*problem);
    const auto& destinations = std::get<Destinations>(loaded);
    if (destinations.empty())
        say(localized("Non c’è ancora una destinazione per i backup: "
                      "velmorquit-tmutil setup CARTELLA"));
    for (const Destination& destination : destinations) {
        say(Repository::isAt(destination.path) ? destination.path
                                               : localized("%@ (non collegata)", destination.path));
        say(localized("  cartelle: %@", shownList(destination.sources)));
        if (!destination.excludes.empty())
            say(localized("  escluso: %@", shownList(destination.excludes)));
        say(localized("  si conservano: %@", rulesText(destination.keep)));
        say(localized("  backup: %lld", destination.snapshots.size()));
        say(localized("  password: %@", destination.passwordFile));
    }
    return ExitStatus::success;
}

ExitStatus stopBackup() {
    switch (RunningBackup::stop()) {
    case RunningBackup::Stop::nothingRan:
        say(localized("Nessun backup in corso."));
        break;
    case RunningBackup::Stop::stopped:
        say(localized("Il backup è stato fermato."));
        break;
    case RunningBackup::Stop::stillRunning:
        return fail({localized("Il backup non si è ancora fermato: il disco risponde?")});
    }
    return ExitStatus::success;
}

ExitStatus removeDestination(const CommandLine& line) {
    std::error_code error;
    const std::string& name = line.names.front();
    const std::string path = fs::weakly_canonical(name, error).string();
    std::optional<Destination> removed;
    const auto problem = Settings::change([&](Destinations& destinations) {
        const auto found = std::ranges::find_if(destinations, [&](const Destination& destination) {
            return destination.path == path || destination.path == name;
        });
        if (found == destinations.end())
            return;
        removed = *found;
        destinations.erase(found);
    });
    if (problem)
        return fail(*problem);
    if (!removed)
        return fail({localized("%@ non è una destinazione.", name)});
    say(localized("%@ non è più una destinazione. I backup che contiene restano.", removed->path));
    say(localized("Per aprirli serve la password, che resta nel file %@: cancellalo solo se ce "
                  "l’hai anche altrove, per esempio sul foglio di recupero.",
                  removed->passwordFile));
    return ExitStatus::success;
}

Outcome<std::vector<Snapshot>> snapshotsIn(const Destination& destination, Restic& restic) {
    const Repository repository(restic, destination.path, destination.passwordFile);
    auto read = repository.snapshots();
    if (problemOf(read))
        return read;
    auto& snapshots = std::get<std::vector<Snapshot>>(read);
    for (Snapshot& snapshot : snapshots) {
        const auto known =
            std::ranges::find_if(destination.snapshots, [&](const SnapshotRecord& record) {
                return isSame(record, snapshot);
            });
        if (known != destination.snapshots.end())
            snapshot.date = known->date;
    }
    // The list may lack a snapshot that a running backup adds meanwhile.
    if (RunningBackup::process())
        return read;
    if (const auto problem = Settings::change(destination.id, [&](Destination& recorded) {
            recorded.snapshots = recordOf(snapshots, destination);
        }))
        return *problem;
    return read;
}

ExitStatus listSnapshots(Restic& restic) {
    const auto loaded = Settings::loadSome();
    if (const auto* problem = problemOf(loaded))
        return fail(*problem);
    ExitStatus status = ExitStatus::success;
    for (const Destination& destination : std::get<Destinations>(loaded)) {
        const auto read = snapshotsIn(destination, restic);
        if (const auto* problem = problemOf(read)) {
            // A disk that isn't plugged in is normal.
            warn(problem->sentence);
            if (Repository::isAt(destination.path))
                status = ExitStatus::failure;
            continue;
        }
        say(destination.path);
        for (const Snapshot& snapshot : std::get<std::vector<Snapshot>>(read)) {
            say("  " + stampOf(snapshot.date) + "  " + snapshot.id.substr(0, 8) + "  " +
                shownName(snapshot.host) + "  " + shownList(snapshot.paths));
        }
    }
    return status;
}

namespace {

/// Reads all of a small repository, and a part of a large one, each time a different one.
ResticEnd check(const Repository& repository, bool readsData) {
    ResticEnd end = repository.run({"check", readsData ? "--read-data" : "--read-data-subset=1G"});
    // Before the first backup there is nothing to read.
    if (end.errors.find("repository having size 0") != end.errors.npos)
        end = repository.run({"check"});
    return end;
}

} // namespace

ExitStatus checkDestinations(const CommandLine& line, Restic& restic) {
    const auto loaded = Settings::loadSome();
    if (const auto* problem = problemOf(loaded))
        return fail(*problem);
    ExitStatus status = ExitStatus::success;
    for (const Destination& destination : std::get<Destinations>(loaded)) {
        const Repository repository(restic, destination.path, destination.passwordFile);
        if (Repository::isAt(destination.path))
            repository.removeStaleLocks();
        const ResticEnd end = check(repository, line.readsData);
        const bool isDamaged = end.errors.find("repository contains errors") != end.errors.npos;
        if (end.isGood())
            say(localized("%@: in ordine", destination.path));
        else if (isDamaged)
            status = fail({localized("I backup in %@ sono danneggiati: fanne di nuovi altrove e "
                                     "prova il disco.",
                                     destination.path)});
        else
            status = fail(repository.problem(end));
    }
    return status;
}

} // namespace velmorquit::tmutil
