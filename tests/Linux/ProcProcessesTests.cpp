#include "Linux/Proc/ProcProcesses.h"
#include "support/Child.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

struct Owners {
    std::set<ProcessId> windows, tray, desktop;

    [[nodiscard]] ProcProcesses::Display display() const {
        return {.windowOwners = [this] { return windows; },
                .trayOwners = [this] { return tray; },
                .desktopProcesses = [this] { return desktop; }};
    }
};

/// A made-up /proc of the user 1000.
class ProcProcessesTest : public testing::Test {
protected:
    static constexpr uid_t user = 1000;
    static constexpr int tty = 34816;

    struct Process {
        ProcessId id, parent, group, session;
        int terminal = 0;
        ProcessId foreground = -1;
        uid_t owner = user;
        char state = 'S';
        int ticks = 0;
        int written = 0;
    };

    void add(const Process& process, std::vector<std::string> arguments,
             const std::string& executable = "") {
        const fs::path folder = folder_.path() / std::to_string(process.id);
        fs::create_directories(folder);
        const auto words = [](std::initializer_list<long> numbers) {
            std::string text;
            for (const long number : numbers)
                text += ' ' + std::to_string(number);
            return text;
        };
        std::ofstream(folder / "stat")
            << process.id << " (" << fs::path(arguments.front()).filename().string() << ") "
            << process.state
            << words({process.parent, process.group, process.session, process.terminal,
                      process.foreground, 0, 0, 0, 0, 0, process.ticks, 0, 0, 0, 20, 0, 1, 0,
                      process.id * 100})
            << "\n";
        std::ofstream(folder / "status") << "Name:\tUid: 7\nUid:\t" << process.owner << "\t0\t0\n";
        std::ofstream(folder / "io")
            << "wchar: 9\nwrite_bytes: " << process.written << "\ncancelled_write_bytes: 5\n";
        fs::remove(folder / "exe");
        if (process.owner == user)
            fs::create_symlink("/usr/bin/" + (executable.empty() ? arguments.front() : executable),
                               folder / "exe");
        std::ofstream line(folder / "cmdline");
        for (const std::string& argument : arguments)
            line << argument << '\0';
    }

    /// A shell that leads the session of its terminal, with a job in front if `foreground` isn't
    /// the shell itself.
    void addShell(ProcessId id, ProcessId parent, ProcessId foreground) {
        add({.id = id,
             .parent = parent,
             .group = id,
             .session = id,
             .terminal = tty,
             .foreground = foreground},
            {"bash"});
    }
    void addJob(ProcessId id, ProcessId shell, std::vector<std::string> arguments,
                const std::string& executable = "") {
        add({.id = id,
             .parent = shell,
             .group = id,
             .session = shell,
             .terminal = tty,
             .foreground = id},
            std::move(arguments), executable);
    }

    [[nodiscard]] ProcProcesses processes() const {
        return ProcProcesses(owners.display(), folder_.path(), user);
    }
    [[nodiscard]] std::vector<std::string> jobs() const {
        std::vector<std::string> names;
        for (const WindowlessJob& job : processes().windowlessJobs())
            names.push_back(job.name + ' ' + std::to_string(job.process));
        return names;
    }

    Owners owners;

private:
    TemporaryFolder folder_;
};

TEST_F(ProcProcessesTest, WorkIsThatOfAProcessAndOfItsFamilyWithoutWindows) {
    static const auto perSecond = static_cast<int>(::sysconf(_SC_CLK_TCK));
    const auto seconds = [](int count) { return count * perSecond; };
    add({10, 1, 10, 10, 0, -1, user, 'S', seconds(1), 1000}, {"office"});
    add({11, 10, 10, 10, 0, -1, user, 'S', seconds(2), 200}, {"converter"});
    add({12, 11, 12, 10, 0, -1, user, 'S', seconds(4), 30}, {"filter"});
    add({13, 10, 13, 13, 0, -1, user, 'S', seconds(8), 4000}, {"daemon"});
    add({14, 10, 10, 10, 0, -1, user, 'S', seconds(16), 50000}, {"viewer"});
    add({15, 10, 10, 10, 0, -1, user, 'S', seconds(32), 600000}, {"player"});
    add({20, 1, 20, 20, 0, -1, user, 'Z', seconds(1), 1}, {"ended"});
    owners.windows = {10, 14};
    const auto work = processes().work({10, 15, 20, 99});
    ASSERT_EQ(work.size(), 2U);
    EXPECT_EQ(work.at(10).start, 1000U);
    EXPECT_EQ(work.at(10).processorTime, 7s);
    EXPECT_EQ(work.at(10).written, 1230U);
    EXPECT_EQ(work.at(15).processorTime, 32s);
    EXPECT_EQ(work.at(15).written, 600000U);
    EXPECT_EQ(processes().startOf(10), 1000U);
    EXPECT_EQ(processes().startOf(20), std::nullopt);
    EXPECT_EQ(processes().startOf(99), std::nullopt);
}

TEST_F(ProcProcessesTest, JobsRunInPanesConsolesAndLoginsButNotAtPromptsNorInWindows) {
    add({5, 1, 5, 5}, {"tmux: server"}, "tmux");
    addShell(10, 5, 10);
    addShell(20, 5, 21);
    addJob(21, 20, {"vim", "text"}, "vim.basic (deleted)");
    addShell(30, 5, 31);
    addJob(31, 30, {"/bin/sh", "/home/me/copy all.sh", "-c"}, "dash");
    addShell(40, 5, 41);
    addJob(41, 40, {"bash"});
    add({42, 41, 41, 40, tty, 41}, {"rsync"});
    add({50, 5, 50, 50, tty, 50}, {"htop"});
    addShell(60, 5, 61);
    addJob(61, 60, {"velmorctl", "quit"});
    // A login from elsewhere, and one on a text console.
    add({7, 1, 7, 7, 0, -1, 0}, {"sshd"});
    addShell(70, 7, 71);
    add({71, 70, 71, 70, tty, 71, 0}, {"sudo", "apt"});
    add({8, 1, 8, 8, tty, 8}, {"login"});
    add({9, 1, 9, 9, tty, 9}, {"agetty"});
    add({80, 1, 80, 80, tty, 80, 0}, {"mutt"});
    // A window shows this one.
    add({90, 1, 90, 90}, {"xterm"});
    add({91, 90, 90, 90}, {"helper"});
    addShell(92, 91, 93);
    addJob(93, 92, {"make"});
    owners.windows = {90};
    EXPECT_THAT(jobs(), UnorderedElementsAre("vim.basic 21", "copy all.sh 31", "rsync 41",
                                             "htop 50", "sudo 71"));
    owners.windows.clear();
    EXPECT_THAT(jobs(), testing::Contains("make 93")) << "its window has gone";
}

TEST_F(ProcProcessesTest, WhatADisplayManagerKeepsATerminalForIsNoJob) {
    add({10, 1, 10, 10, tty, 10}, {"gdm-x-session"});
    add({11, 10, 10, 10, tty, 10}, {"Xorg"});
    add({12, 10, 10, 10, tty, 10}, {"gnome-session-binary"});
    EXPECT_THAT(jobs(), UnorderedElementsAre());
}

TEST_F(ProcProcessesTest, TheDesktopIsNoJobOfTheConsoleThatItWasStartedFrom) {
    addShell(10, 1, 11);
    addJob(11, 10, {"/bin/sh", "/usr/bin/startx"}, "dash");
    add({12, 11, 11, 10, tty, 11}, {"xinit"});
    add({13, 12, 13, 10, tty, 11}, {"openbox"});
    owners.desktop = {13};
    EXPECT_THAT(jobs(), UnorderedElementsAre());
    owners.desktop.clear();
    owners.windows = {13};
    EXPECT_THAT(jobs(), UnorderedElementsAre());
    owners.windows.clear();
    EXPECT_THAT(jobs(), UnorderedElementsAre("startx 11"));
}

TEST_F(ProcProcessesTest, JobsThatOutlivedTheirTerminalAreToldFromDaemonsAndPrograms) {
    add({11, 1, 11, 5}, {"rsync"});
    add({12, 11, 11, 5}, {"rsync"});
    // The first of a group has ended, and comes last where ids have begun anew.
    add({22, 1, 20, 5}, {"sort"});
    add({23, 1, 20, 5}, {"gzip"});
    add({32, 1, 39, 5}, {"helper"});
    add({39, 1, 39, 5}, {"make"});
    add({40, 1, 6, 6}, {"daemon"});
    add({41, 1, 41, 41}, {"service"});
    add({42, 41, 42, 41}, {"child of a service"});
    add({43, 1, 43, 5, 0, -1, 0}, {"other's"});
    add({44, 1, 44, 5}, {"velmorquit"});
    add({45, 1, 45, 5, 0, -1, user, 'Z'}, {"ended"});
    add({2, 0, 0, 0}, {"kthreadd"});
    add({46, 2, 1, 0}, {"from outside"});
    add({50, 1, 50, 5}, {"editor"});
    add({51, 50, 50, 5}, {"editor's helper"});
    add({60, 1, 60, 5}, {"cloud"});
    add({61, 60, 60, 5}, {"cloud's helper"});
    add({70, 1, 70, 5}, {"compositor"});
    owners = {.windows = {0, 50}, .tray = {60}, .desktop = {70}};
    EXPECT_THAT(jobs(),
                UnorderedElementsAre("rsync 11", testing::AnyOf("sort 22", "gzip 23"), "make 39"));
}

/// The system's own /proc.
class RealProcessesTest : public testing::Test {
protected:
    [[nodiscard]] std::string jobOf(ProcessId process) const {
        for (const WindowlessJob& job : processes.windowlessJobs()) {
            if (job.process == process)
                return job.name;
        }
        return {};
    }
    [[nodiscard]] ProcessWork workOf(const Child& child) const {
        const auto work = processes.work({static_cast<ProcessId>(child.id())});
        return work.empty() ? ProcessWork() : work.begin()->second;
    }

    Owners owners;
    ProcProcesses processes{owners.display()};
    TemporaryFolder folder;
};

TEST_F(RealProcessesTest, WorkGrowsWithWhatChildrenDoAndStaysWhenTheyHaveEnded) {
    // The shell itself only waits.
    Child child({"sh", "-c", "timeout 0.3 sh -c 'while :; do :; done'; echo worked; sleep 1000"});
    EXPECT_TRUE(waitUntil([&] { return workOf(child).processorTime >= 50ms; }));
    EXPECT_TRUE(waitUntil([&] { return child.output().find("worked") != std::string::npos; }));
    EXPECT_GE(workOf(child).processorTime, 50ms);
    EXPECT_EQ(workOf(child).start, processes.startOf(static_cast<ProcessId>(child.id())));
}

TEST_F(RealProcessesTest, WorkCountsWhatIsWritten) {
    const std::string file = folder.path() / "file";
    Child child({"sh", "-c",
                 "dd if=/dev/zero of=" + file +
                     " bs=1M count=4 conv=fsync; echo written; "
                     "sleep 1000"});
    ASSERT_TRUE(waitUntil([&] { return child.output().find("written") != std::string::npos; }));
    const auto written = workOf(child).written;
    if (written == 0)
        GTEST_SKIP() << "what is written here goes to no disk";
    EXPECT_GE(written, 4U << 20);
}

TEST_F(RealProcessesTest, SeesTheJobInATerminalThatNoWindowShows) {
    int terminal = -1;
    const pid_t shell = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    ASSERT_GE(shell, 0);
    if (shell == 0) {
        ::execlp("bash", "bash", "--norc", nullptr);
        ::_exit(127);
    }
    const auto type = [&](const std::string& line) {
        EXPECT_EQ(::write(terminal, line.data(), line.size()), std::ssize(line));
    };
    const auto jobs = [&] {
        std::set<std::string> names;
        for (const WindowlessJob& job : processes.windowlessJobs()) {
            const auto stat = readProcessStat(job.process);
            if (stat && stat->session == shell)
                names.insert(job.name);
        }
        return names;
    };
    EXPECT_TRUE(waitUntil([&] { return executableName(shell) == "bash"; }));
    EXPECT_FALSE(ignoresHangup(shell));
    EXPECT_TRUE(waitUntil([&] { return jobs().empty(); }));
    type("nohup sleep 1000 >/dev/null 2>&1 & sleep 2000\n");
    EXPECT_TRUE(waitUntil([&] { return jobs() == std::set<std::string>{"sleep"}; }));
    type("\x03");
    EXPECT_TRUE(waitUntil([&] { return jobs().empty(); })) << "one in the background is none yet";

    ::kill(shell, SIGKILL);
    ::waitpid(shell, nullptr, 0);
    ::close(terminal);
    EXPECT_TRUE(waitUntil([&] { return jobs() == std::set<std::string>{"sleep"}; }));
    EXPECT_TRUE(std::ranges::any_of(processes.windowlessJobs(), [&](const WindowlessJob& job) {
        return readProcessStat(job.process)->session == shell && ignoresHangup(job.process);
    }));
    for (const WindowlessJob& job : processes.windowlessJobs()) {
        const auto stat = readProcessStat(job.process);
        if (stat && stat->session == shell)
            ::kill(job.process, SIGKILL);
    }
}

} // namespace
} // namespace velmorquit
