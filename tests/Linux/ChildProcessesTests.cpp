#include "Linux/Files/LinuxFiles.h"
#include "Linux/Proc/LinuxChildProcesses.h"
#include "support/Waiting.h"

#include <csignal>
#include <gtest/gtest.h>

namespace velmorquit {
namespace {

class ChildProcessesTest : public testing::Test {
protected:
    std::shared_ptr<ChildProcess> launch(const std::string& script) {
        return std::get<std::shared_ptr<ChildProcess>>(children.launch("/bin/sh", {"-c", script}));
    }

    LinuxChildProcesses children;
};

TEST_F(ChildProcessesTest, RunsToTheEndAndGivesWhatWasWritten) {
    const auto good = children.run("/bin/sh", {"-c", "echo out; echo err >&2; exit 3"});
    EXPECT_EQ(good.status, 3);
    EXPECT_EQ(good.output, "out\n");
    EXPECT_EQ(children.run("/bin/sh", {"-c", "kill -9 $$"}).status, 128 + 9);
    EXPECT_EQ(children.run("/bin/sh", {"-c", "cat; head -c 300000 /dev/zero"}).output->size(),
              300000U)
        << "it has nothing to read, and nobody is in its way";
    EXPECT_FALSE(children.run("/nonexistent/tool", {}).output);
    const auto missing = children.launch("/nonexistent/tool", {"x"});
    EXPECT_TRUE(std::get<std::string>(missing).starts_with("/nonexistent/tool: "));
}

TEST_F(ChildProcessesTest, GoesOnByItselfHoweverMuchItSays) {
    const auto flood = launch("head -c 1000000 /dev/zero; head -c 1000000 /dev/zero >&2; "
                              "echo; echo the end >&2; exit 4");
    EXPECT_TRUE(flood->isRunning());
    EXPECT_EQ(flood->status(), 0);
    ASSERT_TRUE(waitUntil([&] { return !flood->isRunning(); }));
    EXPECT_EQ(flood->status(), 4);
    EXPECT_LE(flood->errorOutput().size(), 65536U);
    EXPECT_TRUE(flood->errorOutput().ends_with("the end\n"));

    const auto killed = launch("echo why >&2; kill -15 $$");
    ASSERT_TRUE(waitUntil([&] { return !killed->isRunning(); }));
    EXPECT_EQ(killed->status(), 128 + 15);
    EXPECT_EQ(killed->errorOutput(), "why\n");

    const auto helped = launch("sleep 3 & echo gone >&2");
    ASSERT_TRUE(waitUntil([&] { return !helped->isRunning(); }));
    EXPECT_EQ(helped->errorOutput(), "gone\n") << "whoever holds the pipe isn't waited for";
}

TEST_F(ChildProcessesTest, OneThatNeverStopsTalkingHoldsNothingUp) {
    const auto cut = children.run("/bin/sh", {"-c", "exec yes"});
    EXPECT_FALSE(cut.output);
    EXPECT_EQ(cut.status, 128 + SIGPIPE);

    const auto endless = launch("exec timeout 20 yes >&2");
    for (int turn = 0; turn < 20; ++turn)
        EXPECT_LE(endless->errorOutput().size(), 65536U);
    EXPECT_TRUE(endless->isRunning());
}

TEST_F(ChildProcessesTest, FilesThatCannotBeReadAreNone) {
    const LinuxFiles files;
    EXPECT_TRUE(files.exists("/proc/self"));
    EXPECT_FALSE(files.exists("/nonexistent"));
    for (const char* none : {"/nonexistent", "/proc", "/dev/zero", ""})
        EXPECT_FALSE(files.read(none)) << none;
    EXPECT_TRUE(files.read("/etc/passwd"));
}

} // namespace
} // namespace velmorquit
