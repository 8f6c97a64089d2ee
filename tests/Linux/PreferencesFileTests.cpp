#include "Codecs/PreferencesFile.h"
#include "Codecs/PropertyList.h"
#include "Codecs/PropertyListLimits.h"
#include "Linux/Preferences/PropertyListPreferences.h"
#include "Simulated/SimulatedPorts.h"
#include "Simulated/VirtualLoop.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <csignal>
#include <set>

#include <sys/resource.h>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;
using Dictionary = Value::Dictionary;
using Names = std::set<std::string>;

std::optional<Value> decoded(const fs::path& file) { return PropertyList::decode(contentOf(file)); }

class PreferencesFile : public testing::Test {
protected:
    PropertyListPreferences& open() {
        preferences.reset();
        preferences = std::make_unique<PropertyListPreferences>(loop, log, file);
        return *preferences;
    }
    [[nodiscard]] std::optional<Value> get(const std::string& key) const {
        return preferences->object(key);
    }

    /// As another program does that writes in place, or one that writes a new file and renames it.
    void writeInPlace(const std::string& text) const { folder.write(file, text); }
    void writeRenaming(const Dictionary& values) const {
        fs::rename(folder.write("other", PropertyList::encode(values)), file);
    }

    template <class Condition> bool comesTrue(Condition condition) {
        return waitUntil([&] {
            loop.settle();
            return condition();
        });
    }
    void settle() {
        linger(50);
        loop.settle();
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
    const fs::path file = root / "velmorquit" / "preferences.plist";
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
    EXPECT_EQ(decoded(file), Value(Dictionary{{"flag", true}, {"names", Value::Array{"a", "b"}}}));
    EXPECT_TRUE(preferences->boolean("flag", false));
    EXPECT_EQ(preferences->texts("names"), (std::vector<std::string>{"a", "b"}));
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
    open().set("n", 1);
    for (const auto& [next, previous] : {std::pair(2, 1), std::pair(3, 1), std::pair(4, 3)}) {
        preferences->set("n", next);
        EXPECT_EQ(decoded(beside("~")), Value(Dictionary{{"n", previous}}));
        if (next == 3) // with which 3 is on the disk; 2 may never have been
            loop.settle();
    }
    EXPECT_EQ(names(), (Names{"preferences.plist", "preferences.plist~"}));
}

TEST_F(PreferencesFile, SetsADamagedFileAsideAndTakesThePrevious) {
    open().set("n", 1);
    loop.settle();
    preferences->set("n", 2);
    preferences.reset();
    writeInPlace("<plist><dict><key>n");
    open();
    EXPECT_EQ(get("n"), Value(1));
    EXPECT_EQ(decoded(file), Value(Dictionary{{"n", 1}})) << "the next start finds it too";
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_TRUE(log.lines[0].starts_with("Velmor Quit: preferenze danneggiate"));

    preferences.reset();
    fs::remove(beside("~"));
    writeInPlace("");
    open();
    EXPECT_FALSE(get("n"));
    EXPECT_EQ(contentOf(beside(".damaged-20260302T090000Z-2")), "");
    EXPECT_EQ(contentOf(beside(".damaged-20260302T090000Z")), "<plist><dict><key>n");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(log.lines.size(), 2u);

    // One that is missing is none, whatever the previous one says.
    preferences->set("n", 1);
    preferences->set("n", 2);
    fs::remove(file);
    open();
    EXPECT_FALSE(get("n"));
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(fs::exists(beside("~")));
    EXPECT_EQ(log.lines.size(), 3u);
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
        EXPECT_EQ(get("ours"), Value(1));
        EXPECT_EQ(fs::symlink_status(file).type(),
                  isLinkLoop ? fs::file_type::symlink : fs::file_type::directory);
        EXPECT_EQ(names(), Names{"preferences.plist"});
        EXPECT_EQ(log.lines.size(), 1u);

        fs::remove(file);
        writeRenaming({{"theirs", 3}, {"ours", 4}});
        const Value joined = Dictionary{{"theirs", 3}, {"ours", 1}, {"more", 2}};
        EXPECT_TRUE(comesTrue([&] { return decoded(file) == joined; }));
        EXPECT_EQ(get("theirs"), Value(3));
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
    EXPECT_EQ(get("n"), Value(3));
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
    EXPECT_EQ(get("n"), Value(2));
    writeInPlace(PropertyList::encode(Dictionary{{"n", 3}}));
    EXPECT_TRUE(comesTrue([&] { return told == 2; }));
    EXPECT_EQ(get("n"), Value(3));

    writeInPlace("rubbish");
    EXPECT_TRUE(comesTrue([&] { return decoded(file) == Value(Dictionary{{"n", 3}}); }));
    EXPECT_EQ(contentOf(beside(".damaged-20260302T090000Z")), "rubbish");
    EXPECT_EQ(log.lines.size(), 1u);
    fs::remove(file);
    settle();
    EXPECT_EQ(get("n"), Value(3));
    EXPECT_EQ(told, 2);
    preferences->set("m", 4);
    EXPECT_EQ(decoded(file), Value(Dictionary{{"m", 4}, {"n", 3}}));

    // Of which the watch has not told yet.
    writeRenaming({{"n", 3}, {"theirs", 2}});
    preferences->set("n", 5);
    EXPECT_EQ(decoded(file), Value(Dictionary{{"n", 5}, {"theirs", 2}}));
    EXPECT_EQ(get("theirs"), Value(2));
    writeRenaming({{"n", 5}, {"theirs", 6}});
    EXPECT_EQ(get("theirs"), Value(2));
    preferences->refresh();
    EXPECT_EQ(get("theirs"), Value(6));
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
    EXPECT_LT(names().size(), 25u);
    EXPECT_EQ(contentOf(file), "damaged 29");
    EXPECT_EQ(get("mine"), Value(2));
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

    folder.write(target, PropertyList::encode(Dictionary{{"n", 3}}));
    EXPECT_TRUE(comesTrue([&] { return get("n") == Value(3); }));
}

} // namespace
} // namespace velmorquit
