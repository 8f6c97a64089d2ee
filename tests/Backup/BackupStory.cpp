#include "BackupStory.h"

#include "Codecs/PropertyList.h"
#include "support/Waiting.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sys/stat.h>

namespace velmorquit {

namespace {

std::string content(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

BackupStory::BackupStory() {
    // What others may read is left to the tool.
    ::umask(0);
    for (const char* name : {"home", "run", "config", "cache", "state", "bin"})
        fs::create_directory(root / name);
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("XDG_RUNTIME_DIR", (root / "run").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (root / "config").c_str(), 1);
    ::setenv("XDG_CACHE_HOME", (root / "cache").c_str(), 1);
    ::setenv("XDG_STATE_HOME", (root / "state").c_str(), 1);
    ::setenv("PATH", ((root / "bin").string() + ":/usr/local/bin:/usr/bin:/bin").c_str(), 1);
    for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        ::unsetenv(name);
}

std::string BackupStory::End::lastLine() const {
    const auto end = output.find_last_not_of('\n');
    const auto begin = output.rfind('\n', end);
    return output.substr(begin + 1, end - begin);
}

std::unique_ptr<Child> BackupStory::start(const std::vector<std::string>& words) {
    std::vector<std::string> command{VELMORQUIT_TMUTIL};
    command.insert(command.end(), words.begin(), words.end());
    return std::make_unique<Child>(command);
}

BackupStory::End BackupStory::wait(Child& child) {
    EXPECT_TRUE(waitUntil(
        [&] {
            static_cast<void>(child.output());
            return !child.isRunning();
        },
        120000));
    return {child.status(), child.output()};
}

BackupStory::End BackupStory::tool(const std::vector<std::string>& words) {
    return wait(*start(words));
}

BackupStory::End BackupStory::restic(const fs::path& place, std::vector<std::string> words) {
    words.insert(words.begin(),
                 {"/usr/bin/restic", "--repo", place, "--password-file", passwordFile()});
    Child child(words);
    return wait(child);
}

void BackupStory::setUp(const fs::path& place, const std::vector<std::string>& options) {
    fs::create_directories(place.parent_path());
    std::vector<std::string> words{"setup", place};
    words.insert(words.end(), options.begin(), options.end());
    const End end = tool(words);
    ASSERT_EQ(end.status, 0) << end.output;
    EXPECT_EQ(end.output.find(content(passwordFile()).substr(0, 29)), end.output.npos)
        << "what isn't read on a terminal may become a log";
}

void BackupStory::limit(int kilobytes) {
    write(root / "bin/restic", "#!/bin/sh\nexec /usr/bin/restic --limit-upload " +
                                   std::to_string(kilobytes) + " \"$@\"\n");
    fs::permissions(root / "bin/restic", fs::perms::owner_all);
}

void BackupStory::write(const fs::path& file, std::string_view content) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
}

void BackupStory::writeRandom(const fs::path& file, std::size_t size) {
    std::mt19937_64 random(size);
    std::string block(1 << 20, '\0');
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    for (std::size_t written = 0; written < size; written += block.size()) {
        for (std::size_t at = 0; at < block.size(); at += sizeof(std::uint64_t)) {
            const std::uint64_t number = random();
            std::memcpy(block.data() + at, &number, sizeof number);
        }
        stream.write(block.data(),
                     static_cast<std::streamsize>(std::min(block.size(), size - written)));
    }
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
    const End end = tool({"status", "-X"});
    EXPECT_EQ(end.status, 0);
    const auto list = PropertyList::decode(end.output);
    const auto* fields = list ? list->as<Value::Dictionary>() : nullptr;
    if (!fields || !fields->contains("Running")) {
        ADD_FAILURE() << end.output;
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
    const auto list = PropertyList::decode(content(settings));
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

std::size_t BackupStory::locksIn(const fs::path& place) const {
    const fs::directory_iterator locks(place / "locks");
    return static_cast<std::size_t>(std::distance(begin(locks), end(locks)));
}

} // namespace velmorquit
