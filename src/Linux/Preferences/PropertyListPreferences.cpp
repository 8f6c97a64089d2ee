#include "Linux/Preferences/PropertyListPreferences.h"

#include "Codecs/PreferencesFile.h"
#include "Codecs/PropertyList.h"
#include "Codecs/PropertyListLimits.h"
#include "Linux/Files/AtomicFile.h"
#include "Linux/Files/Descriptor.h"
#include "Linux/Files/PrivateFiles.h"
#include "Linux/Preferences/FileWatch.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace velmorquit {

namespace fs = std::filesystem;

namespace {

/// The least time between readings, however often other programs write the file.
constexpr Paced::Pace pace{.rest = std::chrono::milliseconds(200)};

std::error_code lastError() { return {errno, std::generic_category()}; }

fs::path withSuffix(fs::path file, std::string_view suffix) {
    file += suffix;
    return file;
}

/// The whole file; if it has meanwhile grown too large for a list, its beginning.
std::optional<std::string> readAll(int descriptor) {
    std::string text;
    std::array<char, 16384> part;
    while (text.size() <= PropertyList::largestList) {
        const ssize_t count = read(descriptor, part.data(), part.size());
        if (count > 0)
            text.append(part.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return count == 0 ? std::optional(text) : std::nullopt;
    }
    return text;
}

void store(Value::Dictionary& values, const std::string& key, const std::optional<Value>& value) {
    values.erase(key);
    if (value)
        values.emplace(key, *value);
}

std::string utcStamp(WallTime now) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(
        std::chrono::floor<std::chrono::system_clock::duration>(now));
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%SZ", &utc)};
}

} // namespace

/// The contents of a file.
struct PropertyListPreferences::Contents {
    enum class State { good, missing, damaged, unreadable };
    State state = State::unreadable;
    Value::Dictionary values;
    std::optional<Identity> identity;
    std::error_code error;

    explicit Contents(const fs::path& file) {
        // Non-blocking, lest a pipe in the file's place hold up the program. A link at this point
        // was planted by a stranger.
        const Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
        struct stat status{};
        if (!opened || fstat(opened.get(), &status) != 0) {
            error = lastError();
            state = errno == ENOENT ? State::missing : State::unreadable;
            return;
        }
        if (status.st_size > static_cast<off_t>(PropertyList::largestList)) {
            error = std::make_error_code(std::errc::file_too_large);
            return;
        }
        const auto text = readAll(opened.get());
        if (!text || !S_ISREG(status.st_mode)) {
            error = text ? std::make_error_code(std::errc::invalid_argument) : lastError();
            return;
        }
        identity.emplace(status);
        auto value = PropertyList::decode(*text);
        const auto* dictionary = value ? value->as<Value::Dictionary>() : nullptr;
        state = dictionary ? State::good : State::damaged;
        if (dictionary)
            values = *dictionary;
    }
};

/// A written file on its way to the disk. Shared between the thread that waits for the disk and the
/// main thread, which reads it afterwards and may be gone by then.
struct PropertyListPreferences::Sync {
    Descriptor descriptor;
    fs::path file;
    Identity identity;
    std::error_code error{};

    void run() {
        error = AtomicFile::sync(descriptor);
        if (!error)
            AtomicFile::syncFolderOf(file);
    }
};

PropertyListPreferences::PropertyListPreferences(MainLoop& loop, SystemLog& log, fs::path file)
    : loop_(loop), log_(log), file_(std::move(file)), edits_(pace, [this] { noticeEdit(); }),
      watch_(std::make_unique<FileWatch>([this] { edits_.ask(); })) {
    start();
}

PropertyListPreferences::~PropertyListPreferences() = default;

std::optional<Value> PropertyListPreferences::object(std::string_view key) const {
    const auto found = values_.find(std::string(key));
    return found == values_.end() ? std::nullopt : std::optional(found->second);
}

void PropertyListPreferences::change(std::string_view key, std::optional<Value> value) {
    if (object(key) == value)
        return;
    store(values_, std::string(key), value);
    unwritten_.insert_or_assign(std::string(key), std::move(value));
    isWriteOwed_ = true;
    observers_.tellLater(loop_);
    if (catchUp())
        write();
}

void PropertyListPreferences::start() {
    const fs::path file = PrivateFiles::targetOf(file_);
    watch_->add(file_);
    watch_->add(file);
    Contents contents(file);
    if (contents.state == Contents::State::good)
        return adopt(std::move(contents));
    if (contents.state == Contents::State::missing) {
        if (access(previousPreferencesFile(file).c_str(), F_OK) == 0)
            log_.write(
                "Velmor Quit: preferenze assenti, si parte da zero; quelle di prima sono in " +
                previousPreferencesFile(file).string());
        return;
    }
    Contents previous(previousPreferencesFile(file));
    const bool hasPrevious = previous.state == Contents::State::good;
    values_ = std::move(previous.values);
    if (contents.state == Contents::State::damaged)
        contents.error = setAside(file);
    if (contents.error)
        return reportOnce(isReadFailureTold_, "illeggibili", contents.error);
    reportDamage(hasPrevious ? "si riparte da quelle precedenti" : "si riparte da zero");
    isWriteOwed_ = hasPrevious;
    if (hasPrevious)
        write();
}

// Writing is only tried when another program has changed the file: a failing attempt may itself
// cause events.
void PropertyListPreferences::noticeEdit() {
    const auto before = known_;
    if (catchUp() && isWriteOwed_ && known_ != before)
        write();
}

/// Takes over the file's present content; false if the file must not be overwritten.
bool PropertyListPreferences::catchUp() {
    const fs::path file = PrivateFiles::targetOf(file_);
    struct stat status{};
    if (known_ && stat(file.c_str(), &status) == 0 && Identity(status) == known_)
        return true;
    Contents contents(file);
    if (contents.state == Contents::State::good) {
        adopt(std::move(contents));
        return true;
    }
    known_.reset();
    if (contents.state == Contents::State::missing)
        return true;
    if (contents.state == Contents::State::damaged)
        contents.error = setAside(file);
    if (contents.error) {
        reportOnce(isReadFailureTold_, "illeggibili", contents.error);
        return false;
    }
    reportDamage("restano quelle in uso");
    isWriteOwed_ = true;
    return true;
}

void PropertyListPreferences::adopt(Contents contents) {
    for (const auto& [key, value] : unwritten_)
        store(contents.values, key, value);
    if (contents.values != values_)
        observers_.tellLater(loop_);
    values_ = std::move(contents.values);
    known_ = contents.identity;
    isReadFailureTold_ = false;
}

// Repeated damage must not fill the disk: beyond the limit the file is left alone.
std::error_code PropertyListPreferences::setAside(const fs::path& file) {
    constexpr int most = 20;
    if (setAside_ == most)
        return std::make_error_code(std::errc::invalid_argument);
    const fs::path wanted = withSuffix(file, ".damaged-" + utcStamp(loop_.now()));
    fs::path name = wanted;
    struct stat taken{};
    for (int number = 2; lstat(name.c_str(), &taken) == 0; ++number)
        name = withSuffix(wanted, "-" + std::to_string(number));
    if (rename(file.c_str(), name.c_str()) != 0)
        return lastError();
    ++setAside_;
    return {};
}

void PropertyListPreferences::reportDamage(std::string_view consequence) {
    log_.write("Velmor Quit: preferenze danneggiate, messe da parte in " +
               PrivateFiles::targetOf(file_).parent_path().string() + "; " +
               std::string(consequence));
}

void PropertyListPreferences::reportOnce(bool& isTold, std::string_view what,
                                         std::error_code error) {
    if (!std::exchange(isTold, true))
        log_.write("Velmor Quit: preferenze " + std::string(what) +
                   ", le modifiche restano in memoria: " + file_.string() + ": " + error.message());
}

void PropertyListPreferences::write() {
    const fs::path file = PrivateFiles::targetOf(file_);
    if (const auto error = replace(file, PropertyList::encode(values_)))
        return reportOnce(isWriteFailureTold_, "non salvate", error);
    unwritten_.clear();
    isWriteOwed_ = false;
    isReadFailureTold_ = false;
    isWriteFailureTold_ = false;
    // Only now there is certainly a directory to watch, or a link that leads here.
    watch_->add(file_);
    watch_->add(file);
    if (!isSyncing_)
        syncNext();
}

std::error_code PropertyListPreferences::replace(const fs::path& file, std::string_view list) {
    // It could not be read back.
    if (list.size() > PropertyList::largestList)
        return std::make_error_code(std::errc::file_too_large);
    if (const auto error = PrivateFiles::makeFolder(file.parent_path()))
        return error;
    AtomicFile fresh(file, AtomicFile::Name::ofTheFile);
    if (const auto error = fresh.write(list))
        return error;
    struct stat status{};
    if (fstat(fresh.descriptor().get(), &status) != 0)
        return lastError();
    keepPrevious(file);
    if (const auto error = fresh.put())
        return error;
    known_.emplace(status);
    nextSync_ = std::make_shared<Sync>(Sync{fresh.takeDescriptor(), file, Identity(status)});
    return {};
}

// By a second link to the same file, so that the first name is never missing. Unless this state is
// known to be on the disk, an existing earlier copy is safer.
void PropertyListPreferences::keepPrevious(const fs::path& file) const {
    const fs::path previous = previousPreferencesFile(file);
    struct stat status{};
    if (!known_ || (onDisk_ != known_ && lstat(previous.c_str(), &status) == 0))
        return;
    const fs::path fresh = withSuffix(previous, ".new");
    unlink(fresh.c_str());
    if (link(file.c_str(), fresh.c_str()) == 0)
        rename(fresh.c_str(), previous.c_str());
    // rename() does nothing when both are names of the same file.
    unlink(fresh.c_str());
}

// One at a time: while a slow disk works on one file, only the newest of the later ones waits.
void PropertyListPreferences::syncNext() {
    const auto sync = std::exchange(nextSync_, nullptr);
    isSyncing_ = sync != nullptr;
    if (!sync)
        return;
    const auto done = [this, sync] {
        if (sync->error)
            reportOnce(isWriteFailureTold_, "non salvate", sync->error);
        else
            onDisk_ = sync->identity;
        syncNext();
    };
    syncing_ = loop_.background([sync] { sync->run(); }, done);
}

} // namespace velmorquit
