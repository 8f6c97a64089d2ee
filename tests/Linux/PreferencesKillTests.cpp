#include "Codecs/PropertyList.h"
#include "Linux/Preferences/PropertyListPreferences.h"
#include "Simulated/SimulatedPorts.h"
#include "Simulated/VirtualLoop.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <iostream>
#include <random>

#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;

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

/// The last number that it reported before it was killed; 0 without any.
std::int64_t lastBeforeAKill(const fs::path& file, useconds_t delay) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        return 0;
    const pid_t child = fork();
    if (child == 0)
        countForEver(file, ends[1]);
    close(ends[1]);
    std::int64_t last = 0;
    std::int64_t number = 0;
    const auto hears = [&] { return read(ends[0], &number, sizeof number) == sizeof number; };
    if (hears())
        last = number;
    usleep(delay);
    ::kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    while (hears())
        last = number;
    close(ends[0]);
    return last;
}

TEST(PreferencesFileTest, FiveHundredKillsWhileItIsWrittenLoseNothing) {
    // In memory where that is possible: being killed is no power cut, and a disk takes its time.
    const TemporaryFolder folder("velmor-test.",
                                 fs::is_directory("/dev/shm") ? "/dev/shm" : "/tmp");
    const fs::path file = folder.path() / "preferences.plist";
    const auto count = [&] {
        const auto entries = fs::directory_iterator(folder.path());
        return std::distance(begin(entries), end(entries));
    };
    const auto seed = std::random_device()();
    std::cout << "seed " << seed << '\n';
    std::mt19937 random(seed);
    std::int64_t reported = 0;
    for (int kill = 0; kill < 500; ++kill) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " kill " + std::to_string(kill));
        reported = std::max(reported, lastBeforeAKill(file, random() % 3000));
        const auto value = PropertyList::decode(contentOf(file));
        ASSERT_TRUE(value);
        std::vector<std::int64_t> found;
        for (const char* key : counters)
            found.push_back(*value->as<Value::Dictionary>()->at(key).as<std::int64_t>());
        ASSERT_TRUE(std::is_sorted(found.rbegin(), found.rend()));
        ASSERT_LE(found.front() - found.back(), 1);
        ASSERT_GE(found.back(), reported);
        ASSERT_TRUE(PropertyList::decode(contentOf(file.string() + "~")));
        ASSERT_LE(count(), 4) << "what killed processes leave piles up";
    }
    VirtualLoop loop;
    SimulatedSystemLog log;
    PropertyListPreferences(loop, log, file).set("end", true);
    EXPECT_EQ(count(), 2);
    EXPECT_TRUE(log.lines.empty());
    EXPECT_GT(reported, 500) << "the children hardly wrote anything";
}

} // namespace
} // namespace velmorquit
