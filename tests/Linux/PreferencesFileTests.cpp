#include "Codecs/PreferencesFile.h"
#include "Codecs/PropertyList.h"
#include "Codecs/PropertyListLimits.h"
#include "Linux/Preferences/PropertyListPreferences.h"
#include "Simulated/SimulatedPorts.h"
#include "Simulated/VirtualLoop.h"
#include "support/TemporaryFolder.h"

#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <random>
#include <set>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {
namespace {

using namespace std::string_literals;

namespace fs = std::filesystem;
using Dictionary = Value::Dictionary;
using Names = std::set<std::string>;

std::string contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::optional<Value> decoded(const fs::path& file) { return PropertyList::decode(contents(file)); }

class PreferencesFile : public testing::Test {
protected:
    PreferencesFile() {
        file = root / "velmorquit" / "preferences.plist";
        if (!QCoreApplication::instance()) {
            static int count = 1;
            static std::array<char, 6> program{"tests"};
            static std::array<char*, 2> arguments{program.data(), nullptr};
            static QCoreApplication application(count, arguments.data());
        }
    }

    PropertyListPreferences& open() {
        preferences.reset();
        preferences = std::make_unique<PropertyListPreferences>(loop, log, file);
        return *preferences;
    }

    /// As another program does that writes in place, or one that writes a new file and renames it.
    void writeInPlace(const std::string& text) const {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }
    void writeRenaming(const Dictionary& values) const {
        const fs::path other = root / "other";
        std::ofstream(other, std::ios::binary) << PropertyList::encode(values);
        fs::rename(other, file);
    }

    template <class Condition> bool comesTrue(Condition condition) {
        const auto deadline = std::chrono::steady_clock::now() + 5s;
        while (!condition() && std::chrono::steady_clock::now() < deadline) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            loop.settle();
        }
        return condition();
    }
    void settle(Duration time = 50ms) {
        const auto end = std::chrono::steady_clock::now() + time;
        comesTrue([&] { return std::chrono::steady_clock::now() >= end; });
    }

    [[nodiscard]] Names names() const {
        Names found;
        for (const auto& entry : fs::directory_iterator(file.parent_path()))
            found.insert(entry.path().filename());
        return found;
    }
    [[nodiscard]] fs::path beside(const char* suffix) const { return file.string() + suffix; }

    VirtualLoop loop;
    SimulatedSystemLog log;
    /// In memory where that is possible: being killed is no power cut, and a disk takes its time.
    const TemporaryFolder folder{"velmor-test.",
                                 fs::is_directory("/dev/shm") ? "/dev/shm" : "/tmp"};
    const fs::path& root = folder.path();
    fs::path file;
    std::unique_ptr<PropertyListPreferences> preferences;
};

TEST_F(PreferencesFile, KeepsValuesAcrossStarts) {
    open();
    EXPECT_FALSE(fs::exists(file.parent_path())) << "a fresh start writes nothing";
    preferences->set("flag", true);
    preferences->set("names", Value::Array{"a", "b"});
    preferences->set("gone", 1);
    preferences->remove("gone");
    open();
    EXPECT_TRUE(preferences->boolean("flag", false));
    EXPECT_EQ(preferences->texts("names"), (std::vector<std::string>{"a", "b"}));
    EXPECT_FALSE(preferences->object("gone"));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
    EXPECT_EQ(fs::status(file.parent_path()).permissions(), fs::perms(0700));
    EXPECT_TRUE(log.lines.empty());

    const auto before = fs::last_write_time(file);
    preferences->set("flag", true);
    preferences->remove("never there");
    EXPECT_EQ(fs::last_write_time(file), before) << "an equal value writes nothing";
}

TEST_F(PreferencesFile, TellsOfChangesOncePerTurn) {
    open();
    int told = 0;
    Handle watching = preferences->observe([&] { ++told; });
    loop.settle();
    EXPECT_EQ(told, 0);
    preferences->set("a", 1);
    preferences->set("b", 2);
    EXPECT_EQ(told, 0) << "never from within set";
    loop.settle();
    EXPECT_EQ(told, 1);
    preferences->set("a", 1);
    settle();
    EXPECT_EQ(told, 1) << "neither an equal value nor our own writing is a change";
    watching.reset();
    preferences->set("a", 2);
    loop.settle();
    EXPECT_EQ(told, 1);
}

TEST_F(PreferencesFile, OnlyWhatIsOnTheDiskBecomesThePreviousFile) {
    open();
    preferences->set("n", 1);
    preferences->set("n", 2);
    EXPECT_EQ(decoded(beside("~")), Value(Dictionary{{"n", 1}})) << "the oldest there is";
    preferences->set("n", 3);
    EXPECT_EQ(decoded(beside("~")), Value(Dictionary{{"n", 1}})) << "2 may not be on the disk";
    loop.settle();
    preferences->set("n", 4);
    EXPECT_EQ(decoded(beside("~")), Value(Dictionary{{"n", 3}}));
    EXPECT_EQ(names(), (Names{"preferences.plist", "preferences.plist~"}));
}

TEST_F(PreferencesFile, SetsADamagedFileAsideAndTakesThePrevious) {
    open().set("n", 1);
    loop.settle();
    preferences->set("n", 2);
    preferences.reset();
    writeInPlace("<plist><dict><key>n");
    open();
    EXPECT_EQ(preferences->object("n"), Value(1));
    EXPECT_EQ(decoded(file), Value(Dictionary{{"n", 1}})) << "the next start finds it too";
    EXPECT_EQ(contents(beside(".damaged-20260302T090000Z")), "<plist><dict><key>n");
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_TRUE(log.lines[0].starts_with("Velmor Quit: preferenze danneggiate"));

    preferences.reset();
    fs::remove(beside("~"));
    writeInPlace("");
    open();
    EXPECT_FALSE(preferences->object("n"));
    EXPECT_EQ(contents(beside(".damaged-20260302T090000Z-2")), "");
    EXPECT_EQ(contents(beside(".damaged-20260302T090000Z")), "<plist><dict><key>n");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(log.lines.size(), 2u);
}

TEST_F(PreferencesFile, StartsAnewWithoutAFile) {
    open().set("n", 1);
    preferences->set("n", 2);
    fs::remove(file);
    open();
    EXPECT_FALSE(preferences->object("n"));
    EXPECT_EQ(names(), Names{"preferences.plist~"});
    EXPECT_EQ(log.lines.size(), 1u);
}

TEST_F(PreferencesFile, LeavesAFileAloneThatCannotBeRead) {
    for (const bool isLinkLoop : {false, true}) {
        fs::create_directories(file.parent_path());
        if (isLinkLoop)
            fs::create_symlink(file, file);
        else
            fs::create_directory(file);
        log.lines.clear();
        open().set("ours", 1);
        preferences->set("more", 2);
        EXPECT_EQ(preferences->object("ours"), Value(1));
        EXPECT_EQ(fs::is_directory(fs::symlink_status(file)), !isLinkLoop);
        EXPECT_EQ(fs::is_symlink(fs::symlink_status(file)), isLinkLoop);
        EXPECT_EQ(names(), Names{"preferences.plist"});
        EXPECT_EQ(log.lines.size(), 1u);

        fs::remove(file);
        writeRenaming({{"theirs", 3}, {"ours", 4}});
        const Value joined = Dictionary{{"theirs", 3}, {"ours", 1}, {"more", 2}};
        EXPECT_TRUE(comesTrue([&] { return decoded(file) == joined; }));
        EXPECT_EQ(preferences->object("theirs"), Value(3));
        preferences.reset();
        fs::remove_all(file.parent_path());
    }
}

TEST_F(PreferencesFile, KeepsInMemoryWhatCannotBeWritten) {
    open().set("n", 1);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full{40, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &full);
    preferences->set("n", 2);
    preferences->set("n", 3);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(preferences->object("n"), Value(3));
    EXPECT_EQ(decoded(file), Value(Dictionary{{"n", 1}}));
    EXPECT_EQ(names(), Names{"preferences.plist"});
    EXPECT_EQ(log.lines.size(), 1u);

    writeRenaming({{"n", 1}, {"theirs", 5}});
    preferences->set("m", 4);
    EXPECT_EQ(decoded(file), Value(Dictionary{{"m", 4}, {"n", 3}, {"theirs", 5}}));

    fs::create_directories(beside(".new") / "in the way");
    preferences->set("n", 5);
    preferences->set("n", 6);
    EXPECT_EQ(log.lines.size(), 2u) << "told again after a success, and once";
    fs::remove_all(beside(".new"));
    preferences->set("n", 7);
    EXPECT_EQ(decoded(file), Value(Dictionary{{"m", 4}, {"n", 7}, {"theirs", 5}}));
}

TEST_F(PreferencesFile, NoticesEditsOfOtherPrograms) {
    open().set("n", 1);
    int told = 0;
    const Handle watching = preferences->observe([&] { ++told; });
    settle();
    told = 0;
    writeRenaming({{"n", 2}});
    EXPECT_TRUE(comesTrue([&] { return told == 1; }));
    EXPECT_EQ(preferences->object("n"), Value(2));
    writeInPlace(PropertyList::encode(Dictionary{{"n", 3}}));
    EXPECT_TRUE(comesTrue([&] { return told == 2; }));
    EXPECT_EQ(preferences->object("n"), Value(3));

    // A key with a zero byte in the binary form.
    writeInPlace("bplist00\xD1\x01\x02\x53k\0x\x09\x08\x0B\x0F\0\0\0\0\0\0\1\1"s +
                 std::string(7, '\0') + "\3" + std::string(15, '\0') + "\x10");
    EXPECT_TRUE(comesTrue([&] { return preferences->object("k\0x"s) == Value(true); }));
    EXPECT_EQ(preferences->object("n"), std::nullopt);
    preferences->set("n", 3);
    preferences->remove("k\0x"s);
    settle();
    told = 2;

    writeInPlace("rubbish");
    EXPECT_TRUE(comesTrue([&] { return decoded(file) == Value(Dictionary{{"n", 3}}); }));
    EXPECT_EQ(contents(beside(".damaged-20260302T090000Z")), "rubbish");
    EXPECT_EQ(log.lines.size(), 1u);
    fs::remove(file);
    settle();
    EXPECT_EQ(preferences->object("n"), Value(3));
    EXPECT_EQ(told, 2);
    preferences->set("m", 4);
    EXPECT_EQ(decoded(file), Value(Dictionary{{"m", 4}, {"n", 3}}));
}

TEST_F(PreferencesFile, NeitherReadsWhatIsFarTooLongNorSetsDamageAsideForEver) {
    open().set("mine", 1);
    writeInPlace("<plist>" + std::string(PropertyList::largestList, ' '));
    EXPECT_TRUE(comesTrue([this] { return !log.lines.empty(); }));
    preferences->set("mine", 2);
    EXPECT_GT(fs::file_size(file), PropertyList::largestList);
    for (int time = 0; time < 30; ++time) {
        writeInPlace("damaged " + std::to_string(time));
        preferences->refresh();
    }
    const auto entries = fs::directory_iterator(file.parent_path());
    EXPECT_LT(std::distance(begin(entries), end(entries)), 25);
    EXPECT_EQ(contents(file), "damaged 29");
    EXPECT_EQ(preferences->object("mine"), Value(2));
}

TEST_F(PreferencesFile, MergesAnEditThatItHasNotHeardOf) {
    open().set("n", 1);
    preferences->set("old", 1);
    writeRenaming({{"n", 1}, {"theirs", 2}});
    preferences->set("n", 3);
    EXPECT_EQ(decoded(file), Value(Dictionary{{"n", 3}, {"theirs", 2}}));
    EXPECT_EQ(preferences->object("theirs"), Value(2));
}

TEST_F(PreferencesFile, TakesAnEditOverWhenItIsAskedTo) {
    open().set("ours", 1);
    writeRenaming({{"ours", 1}, {"theirs", 2}});
    EXPECT_EQ(preferences->object("theirs"), std::nullopt) << "the watch has not told of it";
    preferences->refresh();
    EXPECT_EQ(preferences->object("theirs"), Value(2));
}

TEST_F(PreferencesFile, WritesThroughASymbolicLink) {
    const fs::path target = root / "dotfiles" / "velmor.plist";
    fs::create_directories(file.parent_path());
    fs::create_symlink("../dotfiles/velmor.plist", file);
    open().set("n", 1);
    preferences->set("n", 2);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(decoded(target), Value(Dictionary{{"n", 2}}));
    EXPECT_TRUE(fs::exists(target.string() + "~"));
    EXPECT_EQ(names(), Names{"preferences.plist"});

    std::ofstream(target) << PropertyList::encode(Dictionary{{"n", 3}});
    EXPECT_TRUE(comesTrue([&] { return preferences->object("n") == Value(3); }));
}

TEST_F(PreferencesFile, LivesWhereTheConfigurationDoes) {
    const auto given = [](const char* value) {
        setenv("XDG_CONFIG_HOME", value, 1);
        const fs::path found = defaultPreferencesFile();
        unsetenv("XDG_CONFIG_HOME");
        return found;
    };
    const fs::path home = std::getenv("HOME") ? std::getenv("HOME") : "";
    EXPECT_EQ(given("/c"), "/c/velmorquit/preferences.plist");
    EXPECT_EQ(defaultPreferencesFile().parent_path().parent_path().filename(), ".config");
    EXPECT_EQ(given("relative"), defaultPreferencesFile());
}

constexpr std::array counters{"a", "b", "c", "d"};

/// Counts on from what is stored, in several keys one after the other, and reports every number
/// that all of them hold. Ends by being killed.
[[noreturn]] void countForEver(const fs::path& file, int report) {
    VirtualLoop loop;
    SimulatedSystemLog log;
    PropertyListPreferences preferences(loop, log, file);
    const auto stored = preferences.object("d");
    for (std::int64_t number = stored ? *stored->as<std::int64_t>() : 0;;) {
        ++number;
        preferences.set("filling", std::string(1000 + static_cast<std::size_t>(number % 7) * 500,
                                               static_cast<char>('a' + number % 26)));
        for (const char* key : counters)
            preferences.set(key, number);
        if (write(report, &number, sizeof number) != sizeof number)
            _exit(1);
        if (number % 3 == 0)
            loop.settle();
    }
}

TEST_F(PreferencesFile, FiveHundredKillsWhileItIsWrittenLoseNothing) {
    const auto seed = std::random_device()();
    std::cout << "seed " << seed << '\n';
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::int64_t reported = 0;
    for (int kill = 0; kill < 500; ++kill) {
        std::array<int, 2> ends{};
        ASSERT_EQ(pipe(ends.data()), 0);
        const pid_t child = fork();
        if (child == 0)
            countForEver(file, ends[1]);
        close(ends[1]);
        std::int64_t number = 0;
        if (read(ends[0], &number, sizeof number) == sizeof number)
            reported = number;
        usleep(random() % 3000);
        ::kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        while (read(ends[0], &number, sizeof number) == sizeof number)
            reported = number;
        close(ends[0]);

        const auto value = decoded(file);
        ASSERT_TRUE(value) << "kill " << kill;
        std::vector<std::int64_t> found;
        for (const char* key : counters) {
            const auto& stored = value->as<Dictionary>()->find(key);
            if (stored != value->as<Dictionary>()->end())
                found.push_back(*stored->second.as<std::int64_t>());
        }
        ASSERT_EQ(found.size(), counters.size());
        ASSERT_TRUE(std::is_sorted(found.rbegin(), found.rend())) << "kill " << kill;
        ASSERT_LE(found.front() - found.back(), 1) << "kill " << kill;
        ASSERT_GE(found.back(), reported) << "kill " << kill;
        ASSERT_TRUE(decoded(beside("~"))) << "kill " << kill;
        ASSERT_LE(names().size(), 4u) << "what killed processes leave piles up";
    }
    open().set("end", true);
    EXPECT_EQ(names(), (Names{"preferences.plist", "preferences.plist~"}));
    EXPECT_TRUE(log.lines.empty());
    EXPECT_GT(reported, 500) << "the children hardly wrote anything";
}

} // namespace
} // namespace velmorquit
