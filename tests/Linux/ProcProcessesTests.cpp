#include "Linux/Proc/ProcProcesses.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <map>
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
        const fs::path folder = std::to_string(process.id);
        std::string stat = std::to_string(process.id) + " (" +
                           fs::path(arguments.front()).filename().string() + ") " + process.state;
        for (const long field :
             {process.parent, process.group, process.session, process.terminal, process.foreground,
              0, 0, 0, 0, 0, process.ticks, 0, 0, 0, 20, 0, 1, 0, process.id * 100})
            stat += ' ' + std::to_string(field);
        folder_.write(folder / "stat", stat + '\n');
        folder_.write(folder / "status",
                      "Name:\tUid: 7\nUid:\t" + std::to_string(process.owner) + "\t0\t0\n");
        folder_.write(folder / "io", "wchar: 9\nwrite_bytes: " + std::to_string(process.written) +
                                         "\ncancelled_write_bytes: 5\n");
        if (process.owner == user)
            fs::create_symlink("/usr/bin/" + (executable.empty() ? arguments.front() : executable),
                               folder_.path() / folder / "exe");
        std::string line;
        for (const std::string& argument : arguments)
            line += argument + '\0';
        folder_.write(folder / "cmdline", line);
    }

    /// A shell that leads the session of its terminal, with a job in front if `foreground` isn't
    /// the shell itself.
    void addShell(ProcessId id, ProcessId parent, ProcessId foreground) {
        add({id, parent, id, id, tty, foreground}, {"bash"});
    }
    void addJob(ProcessId id, ProcessId shell, std::vector<std::string> arguments,
                const std::string& executable = "") {
        add({id, shell, id, shell, tty, id}, std::move(arguments), executable);
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
    const auto worked = [this](ProcessId id, ProcessId parent, ProcessId session, int seconds,
                               int written, char state = 'S') {
        static const auto perSecond = static_cast<int>(::sysconf(_SC_CLK_TCK));
        add({id, parent, id, session, 0, -1, user, state, seconds * perSecond, written}, {"some"});
    };
    worked(10, 1, 10, 1, 1000);
    worked(11, 10, 10, 2, 200);
    worked(12, 11, 10, 4, 30);
    worked(13, 10, 13, 8, 4000);
    worked(14, 10, 10, 16, 50000);
    worked(15, 10, 10, 32, 600000);
    worked(20, 1, 20, 1, 1, 'Z');
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

TEST_F(ProcProcessesTest, TheDesktopIsNoJobOfTheConsoleThatItWasStartedFrom) {
    addShell(10, 1, 11);
    addJob(11, 10, {"/bin/sh", "/usr/bin/startx"}, "dash");
    add({12, 11, 11, 10, tty, 11}, {"xinit"});
    add({13, 12, 13, 10, tty, 11}, {"openbox"});
    // A display manager keeps a terminal for these.
    add({20, 1, 20, 20, tty, 20}, {"gdm-x-session"});
    add({21, 20, 20, 20, tty, 20}, {"Xorg"});
    add({22, 20, 20, 20, tty, 20}, {"gnome-session-binary"});
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
    /// The jobs of this session, by their names.
    [[nodiscard]] std::map<std::string, ProcessId> jobsOf(pid_t session) const {
        std::map<std::string, ProcessId> found;
        for (const WindowlessJob& job : processes.windowlessJobs()) {
            const auto stat = readProcessStat(job.process);
            if (stat && stat->session == session)
                found.emplace(job.name, job.process);
        }
        return found;
    }

    Owners owners;
    ProcProcesses processes{owners.display()};
};

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
    const auto sleeps = [&] {
        return jobsOf(shell).size() == 1 && jobsOf(shell).contains("sleep");
    };
    EXPECT_TRUE(waitUntil([&] { return executableName(shell) == "bash"; }));
    EXPECT_FALSE(ignoresHangup(shell));
    EXPECT_TRUE(waitUntil([&] { return jobsOf(shell).empty(); }));
    type("nohup sleep 1000 >/dev/null 2>&1 & sleep 2000\n");
    EXPECT_TRUE(waitUntil(sleeps));
    type("\x03");
    EXPECT_TRUE(waitUntil([&] { return jobsOf(shell).empty(); }))
        << "one in the background is none yet";

    ::kill(shell, SIGKILL);
    ::waitpid(shell, nullptr, 0);
    ::close(terminal);
    ASSERT_TRUE(waitUntil(sleeps));
    const ProcessId left = jobsOf(shell)["sleep"];
    EXPECT_TRUE(ignoresHangup(left));
    ::kill(left, SIGKILL);
}

} // namespace
} // namespace velmorquit
