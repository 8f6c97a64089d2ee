#include "Repository.h"

#include "Linux/Proc/ProcDirectory.h"
#include "Linux/Proc/ProcessStat.h"
#include "ResticAnswers.h"
#include "Texts/Localized.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <filesystem>
#include <utility>

#include <unistd.h>

namespace velmorquit::tmutil {

namespace fs = std::filesystem;

namespace {

/// When the system was started, in seconds since 1970.
qint64 bootTime() {
    const std::string stat = ProcDirectory().read("stat");
    const auto at = stat.find("\nbtime ");
    return at == stat.npos ? 0 : std::strtoll(stat.c_str() + at + 7, nullptr, 10);
}

/// Whether the process that had this id at `time` has ended. Probing it with a signal, as restic
/// does, would hit whatever process has the id now.
bool hasEnded(int process, qint64 time) {
    const auto stat = readProcessStat(process);
    if (!stat || stat->state == 'Z' || stat->state == 'X')
        return true;
    const auto ticks = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    const qint64 started = bootTime() + static_cast<qint64>(stat->startTime / ticks);
    // The start of the system is known only to the second.
    return started > time + 2;
}

std::vector<fs::path> filesIn(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
        files.push_back(at->path());
    return files;
}

} // namespace

std::string escapedPattern(const std::string& path) {
    std::string pattern;
    for (const char character : path) {
        if (std::string_view("*?[\\").find(character) != std::string_view::npos)
            pattern += '\\';
        pattern += character;
    }
    return pattern;
}

std::string hostName() {
    std::array<char, 256> name{};
    ::gethostname(name.data(), name.size() - 1);
    return name.data();
}

Repository::Repository(Restic& restic, std::string path, std::string passwordFile)
    : restic_(restic), path_(std::move(path)), passwordFile_(std::move(passwordFile)) {}

bool Repository::isAt(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(fs::path(path) / "config", error);
}

ResticEnd Repository::run(std::vector<std::string> arguments,
                          const Restic::Listeners& listeners) const {
    const std::array options{std::string("--repo=") + path_,
                             std::string("--password-file=") + passwordFile_};
    arguments.insert(arguments.begin(), options.begin(), options.end());
    return restic_.run(arguments, listeners);
}

Problem Repository::problem(const ResticEnd& end) const {
    const auto says = [&](const char* words) { return end.errors.find(words) != end.errors.npos; };
    if (end.isStopped)
        return {localized("Fermato.")};
    if (end.status == -1)
        return {localized("Non posso avviare restic.")};
    if (says("no space left on device") || says("disk quota exceeded"))
        return {
            localized("Il disco della destinazione %@ è pieno: libera spazio e riprova.", path_)};
    if (!isAt(path_))
        return {localized("La destinazione %@ non si trova: collega il disco e riprova.", path_)};
    if (says("wrong password or no key found"))
        return {localized("La password della destinazione %@ è sbagliata.", path_)};
    if (says("repository is already locked"))
        return {localized("Un altro programma sta usando la destinazione %@: riprova più tardi.",
                          path_)};
    if (says("read-only file system"))
        return {localized("La destinazione %@ è di sola lettura.", path_)};
    if (says("permission denied"))
        return {localized("Non ho i permessi per usare la destinazione %@.", path_)};
    std::error_code error;
    if (!fs::exists(passwordFile_, error))
        return {localized("Manca il file con la password della destinazione %@: %@", path_,
                          passwordFile_)};
    return {localized("restic non è riuscito con la destinazione %@: %@", path_,
                      ResticAnswers::lastLine(end.errors))};
}

std::optional<Problem> Repository::create() const {
    const ResticEnd end = run({"init"});
    if (end.isGood())
        return std::nullopt;
    if (end.isStopped || Repository::isAt(path_))
        return problem(end);
    return Problem{localized("Non posso preparare la destinazione %@: %@", path_,
                             ResticAnswers::lastLine(end.errors))};
}

Outcome<std::string> Repository::id() const {
    const ResticEnd end = run({"cat", "config", "--no-lock"});
    const auto object = QJsonDocument::fromJson(QByteArray::fromStdString(end.output)).object();
    const std::string id = object["id"].toString().toStdString();
    if (!end.isGood() || id.empty())
        return problem(end);
    return id;
}

Outcome<std::vector<Snapshot>> Repository::snapshots() const {
    const ResticEnd end = run({"snapshots", "--json", "--no-lock"});
    if (!end.isGood())
        return problem(end);
    return ResticAnswers::snapshots(end.output);
}

Repository::LockHolder Repository::holderOf(const std::string& lock) const {
    const ResticEnd end = run({"cat", "lock", lock, "--no-lock"});
    const auto object = QJsonDocument::fromJson(QByteArray::fromStdString(end.output)).object();
    if (!end.isGood() || object.isEmpty())
        return LockHolder::unknown;
    if (object["hostname"].toString().toStdString() != hostName())
        return LockHolder::elsewhere;
    const qint64 time = ResticAnswers::seconds(object["time"].toString());
    return hasEnded(object["pid"].toInt(), time) ? LockHolder::hasEnded : LockHolder::unknown;
}

void Repository::removeStaleLocks() const {
    bool isAnyElsewhere = false;
    bool isAnyUnknown = false;
    for (const fs::path& lock : filesIn(fs::path(path_) / "locks")) {
        std::error_code error;
        // A power cut may leave empty files.
        const bool isEmpty = fs::file_size(lock, error) == 0 && !error;
        const auto holder = isEmpty ? LockHolder::hasEnded : holderOf(lock.filename().string());
        if (holder == LockHolder::hasEnded)
            fs::remove(lock, error);
        isAnyElsewhere = isAnyElsewhere || holder == LockHolder::elsewhere;
        isAnyUnknown = isAnyUnknown || holder == LockHolder::unknown;
    }
    // By age (half an hour). For processes of this computer, restic would probe with a signal.
    if (isAnyElsewhere && !isAnyUnknown)
        static_cast<void>(run({"unlock"}));
}

} // namespace velmorquit::tmutil
