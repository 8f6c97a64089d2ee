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

    TerminalJobsTest() { addTerminal(10, "bash"); }

    struct Place {
        ProcessId group = 0;
        ProcessId session = 0;
        int terminal = 0;
        double seconds = 0; ///< after the shell
    };
    static Place inTerminal(ProcessId group, double seconds = 0) {
        return {group, 20, device, seconds};
    }

    void add(ProcessId id, ProcessId parent, Place place, const std::string& executable,
             std::vector<std::string> arguments = {}) {
        static const auto perSecond = static_cast<double>(::sysconf(_SC_CLK_TCK));
        ProcessStat stat;
        stat.id = id;
        stat.state = 'S';
        stat.parent = parent;
        stat.group = place.group;
        stat.session = place.session;
        stat.terminal = place.terminal;
        stat.foreground = place.terminal != 0 ? place.session : -1;
        stat.startTime = static_cast<std::uint64_t>(place.seconds * perSecond);
        stat.command = executable.substr(0, 15);
        table_.push_back(stat);
        executables_[id] = executable;
        arguments.insert(arguments.begin(), executable);
        arguments_[id] = std::move(arguments);
    }
    /// With what leads the session of its device, which has the id 10 above.
    void addTerminal(ProcessId id, const std::string& leader,
                     const std::vector<std::string>& arguments = {}) {
        add(id, 1, {id, id}, "xterm");
        add(id + 10, id, {id + 10, id + 10, device}, leader, arguments);
    }
    void bringToForeground(ProcessId group, ProcessId session = 20) {
        for (ProcessStat& process : table_) {
            if (process.session == session)
                process.foreground = group;
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
    add(30, 20, inTerminal(30, 2), "gitstatusd");
    add(32, 1, inTerminal(32, 9), "left by a script");
    add(33, 30, inTerminal(33, 9), "helper of another");
    add(34, 20, inTerminal(34, 9), "nohup");
    add(35, 20, inTerminal(35, 9), "velmorctl");
    deaf = {34};
    EXPECT_FALSE(isAtWork());
    // Commands in brackets, which the shell runs in a copy of itself.
    add(36, 20, inTerminal(36, 2.1), "bash");
    EXPECT_TRUE(isAtWork());
    EXPECT_EQ(terminalJob(table_[1], table_, facts(), Loss::session), std::nullopt);
}

TEST_F(TerminalJobsTest, AMultiplexersClientAndServerGoOnWithoutTheTerminal) {
    add(30, 20, inTerminal(30), "screen");
    add(31, 30, {31, 31}, "screen");
    add(32, 31, {32, 32, device + 1}, "vim");
    bringToForeground(30);
    EXPECT_FALSE(isAtWork());
    EXPECT_EQ(terminalJob(table_[1], table_, facts(), Loss::session), 30);
    add(33, 20, inTerminal(30), "tee");
    EXPECT_TRUE(isAtWork()) << "what it says goes through another program";
}

TEST_F(TerminalJobsTest, AJobThatWasStoppedIsOneAndSoIsOneThatTheSystemHides) {
    addTerminal(11, "bash");
    bringToForeground(31, 21);
    EXPECT_TRUE(isAtWork(11));
    add(30, 20, inTerminal(30), "vim");
    table_.back().state = 'T';
    EXPECT_TRUE(isAtWork());
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
    // The terminal that it was started from is not its own, even in the foreground.
    add(31, 30, inTerminal(30), "helper");
    bringToForeground(30);
    EXPECT_FALSE(isAtWork(30));
    EXPECT_FALSE(isAtWork(99)) << "one that has gone";
}

TEST_F(TerminalJobsTest, ACommandOrAScriptInPlaceOfAShellIsOne) {
    addTerminal(11, "bash");
    addTerminal(12, "htop");
    addTerminal(13, "bash", {"copy-all.sh"});
    addTerminal(14, "sh", {"-lc", "make"});
    addTerminal(15, "bash", {"--norc", "--rcfile", "/etc/rc", "-i"});
    addTerminal(16, "tmux");
    std::set<ProcessId> found;
    for (ProcessId terminal = 10; terminal <= 16; ++terminal) {
        if (isAtWork(terminal))
            found.insert(terminal);
    }
    EXPECT_EQ(found, (std::set<ProcessId>{12, 13, 14}));
}

TEST_F(TerminalJobsTest, AreFoundBehindAHelperAndInEveryTabButNotInOtherPrograms) {
    add(15, 1, {15, 15}, "editor");
    add(16, 15, {15, 15}, "helper");
    add(25, 16, {25, 25, device + 1}, "bash");
    add(26, 16, {26, 26, device + 2}, "bash");
    EXPECT_FALSE(isAtWork(15));
    add(36, 26, {36, 26, device + 2}, "make");
    bringToForeground(36, 26);
    EXPECT_TRUE(isAtWork(15));
    // The terminal that it opened is an application of its own.
    add(17, 1, {17, 17}, "files");
    add(18, 17, {17, 17}, "xterm");
    add(28, 18, {28, 28, device + 3}, "vim");
    windows.insert(18);
    EXPECT_FALSE(isAtWork(17));
    EXPECT_TRUE(isAtWork(18));
}

} // namespace
} // namespace velmorquit
