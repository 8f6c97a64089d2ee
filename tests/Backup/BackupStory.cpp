#include "BackupStory.h"

#include "Codecs/PropertyList.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/stat.h>

namespace velmorquit {

std::string lastLineOf(const std::string& text) {
    const auto end = text.find_last_not_of('\n');
    const auto begin = text.rfind('\n', end);
    return text.substr(begin + 1, end - begin);
}

BackupStory::BackupStory() {
    // The tool decides what others may read.
    ::umask(0);
    for (const char* name : {"home", "run", "config", "cache", "state", "bin"})
        fs::create_directory(root / name);
    ::setenv("HOME", home.c_str(), 1);
    for (const auto& [variable, name] : {std::pair("XDG_RUNTIME_DIR", "run"),
                                         {"XDG_CONFIG_HOME", "config"},
                                         {"XDG_CACHE_HOME", "cache"},
                                         {"XDG_STATE_HOME", "state"}})
        ::setenv(variable, (root / name).c_str(), 1);
    ::setenv("PATH", ((root / "bin").string() + ":/usr/local/bin:/usr/bin:/bin").c_str(), 1);
    for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        ::unsetenv(name);
}

std::unique_ptr<Child> BackupStory::start(Words words) {
    words.insert(words.begin(), VELMORQUIT_TMUTIL);
    return std::make_unique<Child>(words);
}

void BackupStory::setUp(const fs::path& place, const Words& options) {
    fs::create_directories(place.parent_path());
    Words words{"setup", place};
    words.insert(words.end(), options.begin(), options.end());
    const Outcome end = tool(words);
    ASSERT_THAT(end, succeeds());
    EXPECT_EQ(end.text.find(contents(passwordFile()).substr(0, 29)), end.text.npos)
        << "what isn't read on a terminal may become a log";
}

void BackupStory::limit(int kilobytes) {
    write(root / "bin/restic", "#!/bin/sh\nexec /usr/bin/restic --limit-upload " +
                                   std::to_string(kilobytes) + " \"$@\"\n");
    fs::permissions(root / "bin/restic", fs::perms::owner_all);
}

void BackupStory::writeRandom(const fs::path& file, std::size_t size) {
    fs::create_directories(file.parent_path());
    run({"dd", "if=/dev/urandom", "of=" + file.string(), "bs=1M",
         "count=" + std::to_string(size >> 20)});
    EXPECT_EQ(fs::file_size(file), size);
}

void BackupStory::makeMixedFiles() {
    write(home / "docs/note.txt", "one");
    write(home / "docs/empty", "");
    write(home / "docs/two\nlines", "newline");
    write(home / "docs/\xff\xfe not UTF-8", "bytes");
    write(home / "docs/*[stars]?\\", "pattern");
    write(home / "docs/-dash", "dash");
    fs::create_directory(home / "docs/no files");
    fs::create_symlink("note.txt", home / "docs/link");
    fs::create_symlink("nowhere", home / "docs/broken");
    fs::create_hard_link(home / "docs/note.txt", home / "docs/hard");
    writeRandom(home / "docs/large", 3 << 20);
}

BackupStory::Progress BackupStory::progress() {
    const Outcome end = tool({"status", "-X"});
    EXPECT_EQ(end.status, 0);
    const auto list = PropertyList::decode(end.text);
    const auto* fields = list ? list->as<Value::Dictionary>() : nullptr;
    if (!fields || !fields->contains("Running")) {
        ADD_FAILURE() << end.text;
        return {};
    }
    Progress progress{.isRunning = *fields->at("Running").as<bool>()};
    if (fields->contains("Percent"))
        progress.percent = *fields->at("Percent").as<double>();
    return progress;
}

bool BackupStory::comesTo(double percent) {
    return waitUntil([&] { return progress().percent >= percent; });
}

Value::Dictionary BackupStory::destination(std::size_t index) const {
    const auto list = PropertyList::decode(contents(settings));
    const auto& root = *list.value().as<Value::Dictionary>();
    const auto& all = *root.at("Destinations").as<Value::Array>();
    return *all.at(index).as<Value::Dictionary>();
}

std::string BackupStory::passwordFile() const {
    const auto fields = destination();
    return *fields.at("PasswordFile").as<std::string>();
}

std::vector<WallTime> BackupStory::dates(std::size_t index) const {
    std::vector<WallTime> dates;
    const auto fields = destination(index);
    for (const Value& date : *fields.at("SnapshotDates").as<Value::Array>())
        dates.push_back(*date.as<WallTime>());
    return dates;
}

std::size_t BackupStory::locksIn(const fs::path& place) {
    const fs::directory_iterator locks(place / "locks");
    return static_cast<std::size_t>(std::distance(begin(locks), end(locks)));
}

} // namespace velmorquit
