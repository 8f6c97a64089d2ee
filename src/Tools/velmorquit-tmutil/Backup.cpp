#include "Backup.h"

#include "Folders.h"
#include "Language/LocalTime.h"
#include "Linux/Files/PrivateFiles.h"
#include "Linux/Power/BusSleepHold.h"
#include "Linux/Power/PowerBus.h"
#include "Repository.h"
#include "ResticReport.h"
#include "Retention.h"
#include "RunningBackup.h"
#include "Say.h"
#include "Sources.h"
#include "Stamp.h"
#include "Texts/Localized.h"

#include <QCoreApplication>
#include <QProcess>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>

#include <unistd.h>

namespace velmorquit::tmutil {

namespace fs = std::filesystem;

namespace {

/// Keeps the computer awake, as far as that is possible.
class Wakefulness {
public:
    /// Called while restic is already working, since connecting to the buses takes a moment.
    void begin() {
        if (hold_)
            return;
        const auto environment = PowerBus::Environment::ofThisProcess();
        session_ = std::make_unique<PowerBus>(PowerBus::session(environment));
        system_ = std::make_unique<PowerBus>(PowerBus::system(environment));
        hold_ = std::make_unique<BusSleepHold>(*session_, *system_);
        hold_->begin(localized("Backup in corso"), BusSleepHold::Against::anySleep);
    }

private:
    std::unique_ptr<PowerBus> session_;
    std::unique_ptr<PowerBus> system_;
    std::unique_ptr<BusSleepHold> hold_;
};

/// One backup to all destinations.
class BackupRun {
public:
    BackupRun(Restic& restic, const Formats& formats, RunningBackup& running,
              std::vector<Destination> destinations)
        : restic_(restic), formats_(formats), running_(running),
          destinations_(std::move(destinations)) {}

    ExitStatus run() {
        std::vector<Problem> problems;
        for (const Destination& destination : destinations_) {
            if (const auto problem = backUpTo(destination))
                problems.push_back(*problem);
            ++done_;
            if (restic_.isInterrupted())
                return fail({localized("Il backup è stato fermato.")});
        }
        // Last, after all other messages.
        ExitStatus status = ExitStatus::success;
        for (const Problem& problem : problems)
            status = fail(problem);
        return status;
    }

private:
    std::optional<Problem> backUpTo(const Destination& destination);
    std::optional<Problem> record(const Destination& destination, const SnapshotRecord& made);
    void hearErrors(const Repository& repository, std::string_view line);
    void publish();
    void tell(const Destination& destination, const SnapshotRecord& made) const;

    Restic& restic_;
    const Formats& formats_;
    RunningBackup& running_;
    const std::vector<Destination> destinations_;
    Wakefulness wakefulness_;
    ResticReport report_;
    std::size_t done_ = 0;
};

/// The existing sources; the user is warned of the others.
std::vector<std::string> presentSources(const Destination& destination) {
    std::vector<std::string> present;
    for (const std::string& source : destination.sources) {
        std::error_code error;
        if (fs::exists(source, error))
            present.push_back(source);
        else
            warn(localized("Attenzione: la cartella da salvare %@ non c’è, il backup è senza.",
                           source));
    }
    return present;
}

std::vector<std::string> arguments(const Destination& destination,
                                   const std::vector<Destination>& all,
                                   const std::vector<std::string>& sources) {
    std::vector<std::string> list{"backup",
                                  "--json",
                                  "--one-file-system",
                                  "--exclude-caches",
                                  std::string("--tag=") + Repository::tag,
                                  "--host=" + destination.host};
    for (const std::string& pattern : Sources::excludes(destination, all))
        list.push_back("--exclude=" + pattern);
    list.emplace_back("--");
    list.insert(list.end(), sources.begin(), sources.end());
    return list;
}

std::optional<Problem> BackupRun::backUpTo(const Destination& destination) {
    const Repository repository(restic_, destination.path, destination.passwordFile);
    // Never created here: an empty mount point is a disk that isn't plugged in.
    if (!Repository::isAt(destination.path))
        return Problem{localized("La destinazione %@ non si trova: collega il disco e riprova.",
                                 destination.path)};
    const auto sources = presentSources(destination);
    if (sources.empty())
        return Problem{localized("Nessuna delle cartelle da salvare in %@ c’è.", destination.path)};
    repository.removeStaleLocks();
    report_ = {};
    SnapshotRecord made{.id = {}, .date = wholeSecondFromNow()};
    // Each backup needs a name of its own.
    if (const auto latest = destination.latest(); latest && made.date <= *latest)
        made.date = *latest + 1s;
    const ResticEnd end =
        repository.run(arguments(destination, destinations_, sources),
                       {.output =
                            [this](std::string_view line) {
                                report_.hear(line);
                                publish();
                            },
                        .errors = [&](std::string_view line) { hearErrors(repository, line); },
                        .started = [this] { wakefulness_.begin(); }});
    made.id = report_.snapshot();
    // Unreadable files don't spoil the rest.
    constexpr int someUnreadable = 3;
    if (made.id.empty() || (end.status != 0 && end.status != someUnreadable))
        return repository.problem(end);
    if (const auto problem = record(destination, made))
        return problem;
    tell(destination, made);
    if (!destination.keep.isAny())
        return std::nullopt;
    if (const auto problem = Retention::apply(repository, destination))
        warn(localized("Attenzione: il backup è fatto, ma quelli vecchi restano. %@",
                       problem->sentence));
    return std::nullopt;
}

std::optional<Problem> BackupRun::record(const Destination& destination,
                                         const SnapshotRecord& made) {
    return Settings::change(destination.id,
                            [&](Destination& recorded) { recorded.snapshots.push_back(made); });
}

// restic would retry for a quarter of an hour what can't resolve itself.
void BackupRun::hearErrors(const Repository& repository, std::string_view line) {
    report_.hear(line);
    const bool isRetrying = line.find("retrying") != line.npos;
    if (isRetrying &&
        (line.find("no space left") != line.npos || line.find("input/output error") != line.npos ||
         !Repository::isAt(repository.path())))
        repository.interrupt();
}

void BackupRun::publish() {
    if (!report_.fraction())
        return;
    const double all = (static_cast<double>(done_) + *report_.fraction()) /
                       static_cast<double>(destinations_.size());
    running_.publish(all);
    if (::isatty(STDERR_FILENO))
        std::cerr << '\r' << std::lround(100 * all) << " %\x1b[K\r" << std::flush;
}

void BackupRun::tell(const Destination& destination, const SnapshotRecord& made) const {
    if (report_.unreadable() == 1)
        warn(localized("Attenzione: non ho potuto leggere %@; tutto il resto è nel backup.",
                       report_.unreadablePath()));
    else if (report_.unreadable() > 1)
        warn(localized("Attenzione: non ho potuto leggere %lld file o cartelle, per esempio %@; "
                       "tutto il resto è nel backup.",
                       report_.unreadable(), report_.unreadablePath()));
    say(localized("Backup completato: %@ (file nuovi o cambiati: %lld, aggiunti %@)",
                  pathOf(destination, made.date), report_.files(),
                  formats_.bytes(report_.added())));
}

Problem alreadyRunning() { return {localized("Un backup è già in corso.")}; }

} // namespace

ExitStatus backUp(Restic& restic, const Formats& formats) {
    auto destinations = Settings::loadSome();
    if (const auto* problem = problemOf(destinations))
        return fail(*problem);
    auto running = RunningBackup::begin();
    if (!running)
        return fail(alreadyRunning());
    return BackupRun(restic, formats, *running,
                     std::get<std::vector<Destination>>(std::move(destinations)))
        .run();
}

ExitStatus backUpInBackground() {
    const auto destinations = Settings::loadSome();
    if (const auto* problem = problemOf(destinations))
        return fail(*problem);
    if (RunningBackup::process())
        return fail(alreadyRunning());
    const fs::path log = Folders::state() / "backup.log";
    // Files keep this mode when they are opened later.
    if (PrivateFiles::makeFolder(log.parent_path()) ||
        PrivateFiles::replace(log, {}, PrivateFiles::Durability::untilShutdown))
        return fail(
            {localized("Non posso scrivere nella cartella %@.", log.parent_path().string())});
    QProcess process;
    process.setProgram(QCoreApplication::applicationFilePath());
    process.setArguments({QStringLiteral("startbackup"), QStringLiteral("--block")});
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QString::fromStdString(log.string()));
    process.setStandardErrorFile(QString::fromStdString(log.string()), QIODevice::Append);
    qint64 id = 0;
    if (!process.startDetached(&id))
        return fail({localized("Non posso avviare il backup.")});
    constexpr int patience = 3000;
    for (int waited = 0; waited < patience && RunningBackup::process() != id; waited += 10) {
        // A process that has already ended has logged the reason.
        if (::kill(static_cast<pid_t>(id), 0) != 0)
            break;
        QThread::msleep(10);
    }
    say(localized("Backup avviato. A che punto è: velmorquit-tmutil status. Il resoconto: %@",
                  log.string()));
    return ExitStatus::success;
}

} // namespace velmorquit::tmutil
