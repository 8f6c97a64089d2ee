#include "Linux/Proc/TerminalJobs.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

namespace velmorquit {
namespace {

/// A terminal, process 10, with a shell, process 20, that leads the session of its device.
class TerminalJobsTest : public testing::Test {
protected:
    static constexpr int device = 34816;

    TerminalJobsTest() {
        add(10, 1, {.group = 10, .session = 10}, "xterm");
        add(20, 10, inTerminal(20), "bash");
    }

    struct Place {
        ProcessId group = 0;
        ProcessId session = 0;
        int terminal = 0;
        std::uint64_t startTime = 0;
    };
    static Place inTerminal(ProcessId group, ProcessId session = 20) {
        return {group, session, device};
    }
    /// Seconds after the shell.
    static Place inTerminalSince(double seconds, ProcessId group) {
        const double ticks = seconds * static_cast<double>(::sysconf(_SC_CLK_TCK));
        return {group, 20, device, static_cast<std::uint64_t>(ticks)};
    }

    void add(ProcessId id, ProcessId parent, Place place, const std::string& executable,
             std::vector<std::string> arguments = {}) {
        ProcessStat stat;
        stat.id = id;
        stat.state = 'S';
        stat.parent = parent;
        stat.group = place.group;
        stat.session = place.session;
        stat.terminal = place.terminal;
        stat.foreground = place.terminal != 0 ? place.session : -1;
        stat.startTime = place.startTime;
        stat.command = executable.substr(0, 15);
        table_.push_back(stat);
        executables_[id] = executable;
        arguments.insert(arguments.begin(), executable);
        arguments_[id] = std::move(arguments);
    }

    void bringToForeground(ProcessId group, ProcessId session = 20) {
        for (ProcessStat& process : table_) {
            if (process.session == session)
                process.foreground = group;
        }
    }

    void stop(ProcessId id) {
        for (ProcessStat& process : table_) {
            if (process.id == id)
                process.state = 'T';
        }
    }

    ProcessFacts facts() const {
        return {.executable = [this](ProcessId id) { return executables_.at(id); },
                .arguments = [this](ProcessId id) { return arguments_.at(id); },
                .ownsWindows = [this](ProcessId id) { return windows.contains(id); },
                .ignoresHangup = [this](ProcessId id) { return deaf.contains(id); }};
    }
    bool isAtWork(ProcessId application = 10) const {
        return hasTerminalJob(application, table_, facts());
    }

    std::set<ProcessId> windows{10};
    std::set<ProcessId> deaf;
    std::vector<ProcessStat> table_;

private:
    std::map<ProcessId, std::string> executables_;
    std::map<ProcessId, std::vector<std::string>> arguments_;
};

TEST_F(TerminalJobsTest, AJobInTheBackgroundIsOneButAPromptsHelperIsNot) {
    EXPECT_FALSE(isAtWork());
    add(30, 20, inTerminalSince(2, 30), "gitstatusd");
    add(32, 1, inTerminalSince(9, 32), "left by a script");
    add(33, 30, inTerminalSince(9, 33), "helper of another");
    add(34, 20, inTerminalSince(9, 34), "nohup");
    add(35, 20, inTerminalSince(9, 35), "velmorctl");
    deaf = {34};
    EXPECT_FALSE(isAtWork());
    // Commands in brackets, which the shell runs in a copy of itself.
    add(36, 20, inTerminalSince(2.1, 36), "bash");
    EXPECT_TRUE(isAtWork());
    EXPECT_EQ(terminalJob(table_[1], table_, facts(), Loss::session), std::nullopt);
}

TEST_F(TerminalJobsTest, AMultiplexersClientAndServerGoOnWithoutTheTerminal) {
    add(30, 20, inTerminal(30), "screen");
    add(31, 30, {.group = 31, .session = 31}, "screen");
    add(32, 31, {32, 32, device + 1}, "vim");
    bringToForeground(30);
    EXPECT_FALSE(isAtWork());
    EXPECT_EQ(terminalJob(table_[1], table_, facts(), Loss::session), 30);
    add(12, 1, {.group = 12, .session = 12}, "xterm");
    add(22, 12, inTerminal(22, 22), "tmux");
    EXPECT_FALSE(isAtWork(12));
    add(33, 20, inTerminal(30), "tee");
    EXPECT_TRUE(isAtWork()) << "what it says goes through another program";
}

TEST_F(TerminalJobsTest, AJobThatWasStoppedIsOneAndSoIsOneThatTheSystemHides) {
    add(30, 20, inTerminal(30), "vim");
    stop(30);
    EXPECT_TRUE(isAtWork());
    add(11, 1, {.group = 11, .session = 11}, "xterm");
    add(21, 11, inTerminal(21, 21), "bash");
    EXPECT_FALSE(isAtWork(11));
    bringToForeground(31, 21);
    EXPECT_TRUE(isAtWork(11));
}

TEST_F(TerminalJobsTest, AJobInTheForegroundIsOneButOurOwnProgramsAreNot) {
    add(30, 20, inTerminal(30), "velmorctl");
    bringToForeground(30);
    EXPECT_FALSE(isAtWork());
    EXPECT_FALSE(terminalsRest(10, table_, facts()));
    add(40, 20, inTerminal(40), "vim");
    bringToForeground(40);
    EXPECT_TRUE(isAtWork());
    EXPECT_TRUE(terminalsRest(10, table_, facts()));
}

TEST_F(TerminalJobsTest, AProgramWithWindowsThatTheShellWouldTakeAlongIsOne) {
    add(30, 20, inTerminal(30), "mousepad");
    EXPECT_FALSE(isAtWork());
    windows.insert(30);
    EXPECT_TRUE(isAtWork());
    deaf.insert(30);
    EXPECT_FALSE(isAtWork());
    EXPECT_FALSE(isAtWork(30)) << "the editor itself is no terminal";
}

TEST_F(TerminalJobsTest, ACommandOrAScriptInPlaceOfAShellIsOne) {
    add(11, 1, {.group = 11, .session = 11}, "xterm");
    add(21, 11, inTerminal(21, 21), "htop");
    EXPECT_TRUE(isAtWork(11));
    add(12, 1, {.group = 12, .session = 12}, "xterm");
    add(22, 12, inTerminal(22, 22), "bash", {"copy-all.sh"});
    EXPECT_TRUE(isAtWork(12));
    add(13, 1, {.group = 13, .session = 13}, "xterm");
    add(23, 13, inTerminal(23, 23), "sh", {"-lc", "make"});
    EXPECT_TRUE(isAtWork(13));
    add(14, 1, {.group = 14, .session = 14}, "xterm");
    add(24, 14, inTerminal(24, 24), "bash", {"--norc", "--rcfile", "/etc/rc", "-i"});
    EXPECT_FALSE(isAtWork(14));
}

TEST_F(TerminalJobsTest, AreFoundBehindAHelperAndInEveryTabButNotInOtherPrograms) {
    add(15, 1, {.group = 15, .session = 15}, "editor");
    add(16, 15, {.group = 15, .session = 15}, "helper");
    add(25, 16, {25, 25, device + 1}, "bash");
    add(26, 16, {26, 26, device + 2}, "bash");
    EXPECT_FALSE(isAtWork(15));
    add(36, 26, {36, 26, device + 2}, "make");
    bringToForeground(36, 26);
    EXPECT_TRUE(isAtWork(15));
    // The terminal that it opened is an application of its own.
    add(17, 1, {.group = 17, .session = 17}, "files");
    add(18, 17, {.group = 17, .session = 17}, "xterm");
    add(28, 18, {28, 28, device + 3}, "vim");
    windows.insert(18);
    EXPECT_FALSE(isAtWork(17));
    EXPECT_TRUE(isAtWork(18));
}

TEST_F(TerminalJobsTest, TheTerminalThatAProgramWasStartedFromIsNotItsOwn) {
    add(30, 20, inTerminal(30), "editor");
    add(31, 30, inTerminal(30), "helper");
    bringToForeground(30);
    EXPECT_FALSE(isAtWork(30));
    EXPECT_FALSE(isAtWork(99)) << "one that has gone";
}

} // namespace
} // namespace velmorquit
