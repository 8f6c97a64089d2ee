#include "Linux/Proc/ProcKernel.h"
#include "Linux/Proc/ProcessStat.h"
#include "Linux/Text/Utf8.h"
#include "support/Child.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <unistd.h>

namespace velmorquit {
namespace {

TEST(ProcessStatTest, SurvivesAnyNameThatAProgramMayHaveAndRefusesWhatIsNoSuchLine) {
    const std::string rest = " S 7 8 9 34816 10 4194304 1 2 3 4 5 6 7 8 20 0 1 0 424242 99 88\n";
    for (const std::string name :
         {"bash", "a) R 1 (b", "two words", "new\nline", ")", "", "\xff\xfe"}) {
        const auto stat = parseProcessStat("123 (" + name + ")" + rest);
        ASSERT_TRUE(stat) << name;
        EXPECT_EQ(stat->command, name);
        EXPECT_EQ(stat->state, 'S');
        EXPECT_EQ((std::vector<long>{stat->id, stat->parent, stat->group, stat->session,
                                     stat->terminal, stat->foreground}),
                  (std::vector<long>{123, 7, 8, 9, 34816, 10}));
        EXPECT_EQ(stat->processorTime, 5U + 6 + 7 + 8);
        EXPECT_EQ(stat->startTime, 424242U);
    }
    for (const char* line :
         {"", "123", "123 (bash", "123 bash) S 7 8 9", "(bash) S 7", "123 (bash) S 7 8",
          "123 (bash) S x 8 9 0 -1 0 0", "123 (b) S 7 8 9 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0"})
        EXPECT_FALSE(parseProcessStat(line)) << line;
}

TEST(ProcessStatTest, SeesThisProcessesChildrenAndWhatTheyWereStartedWith) {
    const Child child({"env", "-i", "AB=1=2", "ABC=3", "EMPTY=", "/bin/sleep", "1000"});
    ASSERT_TRUE(waitUntil([&] { return executableName(child.id()) == "sleep"; }));
    EXPECT_TRUE(std::ranges::any_of(readProcessTable(), [&](const ProcessStat& process) {
        return process.id == child.id() && process.parent == ::getpid();
    }));
    EXPECT_EQ(processArguments(child.id()), (std::vector<std::string>{"/bin/sleep", "1000"}));
    EXPECT_EQ(processEnvironment(child.id(), "AB"), "1=2");
    EXPECT_EQ(processEnvironment(child.id(), "ABC"), "3");
    EXPECT_EQ(processEnvironment(child.id(), "EMPTY"), "");
    EXPECT_FALSE(processEnvironment(child.id(), "A"));
    EXPECT_FALSE(readProcessStat(-1));
    EXPECT_EQ(executableName(-1), "");
}

TEST(FootprintTest, CountsWhatWouldComeFreeAndToleratesMissingLines) {
    const std::pair<const char*, std::optional<std::uint64_t>> cases[] = {
        {"Name:\tx\nRssAnon:\t     100 kB\nRssFile:\t 9999 kB\nRssShmem:\t  20 kB\n"
         "VmSwap:\t   3 kB\n",
         123 * 1024},
        {"Name:\tRssAnon: 7 kB\nVmSwap:\t 3 kB\n", 3 * 1024},
        {"Name:\tkthreadd\nThreads:\t1\n", {}},
        {"", {}},
        {"x\nRssAnon:\t -\n", {}}};
    for (const auto& [status, bytes] : cases)
        EXPECT_EQ(footprintFromStatus(status), bytes) << status;
}

TEST(FootprintTest, GrowsWithTheMemoryThatAProcessTouches) {
    const ProcKernel kernel;
    EXPECT_FALSE(kernel.processTable().empty()) << "from here on figures are remembered";
    const auto before = kernel.footprint(kernel.ownProcessId());
    std::vector<char> block(64 << 20);
    std::memset(block.data(), 1, block.size());
    const auto after = kernel.footprint(kernel.ownProcessId());
    ASSERT_TRUE(before && after);
    EXPECT_GE(*after - *before, 60U << 20);
    EXPECT_FALSE(kernel.footprint(-1));
}

TEST(TextTest, IsAlwaysValidUtf8) {
    EXPECT_EQ(utf8("Caffè"), "Caffè");
    EXPECT_EQ(utf8("Caff\xe8"), "Caffè");
    EXPECT_EQ(utf8(""), "");
}

} // namespace
} // namespace velmorquit
