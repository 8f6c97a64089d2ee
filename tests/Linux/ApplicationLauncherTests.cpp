#include "Linux/Applications/ApplicationLauncher.h"
#include "Simulated/SimulatedPorts.h"
#include "support/PrivateBus.h"
#include "support/TemporaryFolder.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;

/// A variable of this process, which has its former value again when this goes.
class Variable {
public:
    Variable(const char* name, const std::string& value) : name_(name), former_(qgetenv(name)) {
        qputenv(name, QByteArray::fromStdString(value));
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { former_.isNull() ? qunsetenv(name_) : qputenv(name_, former_); }

private:
    const char* name_;
    QByteArray former_;
};

/// Starts a program that reports what it is and then stays for a while.
class ApplicationLauncherTest : public testing::Test {
protected:
    ApplicationLauncherTest() {
        temporary.writeProgram("program", "#!/bin/sh\nd=" + folder.string() +
                                              "/report\n"
                                              "env >$d.part; echo ARGUMENTS=$* >>$d.part\n"
                                              "echo PROCESS=$$ >>$d.part; mv $d.part $d\n"
                                              "exec sleep 100\n");
    }
    ~ApplicationLauncherTest() override {
        for (const pid_t process : programs)
            ::kill(process, SIGKILL);
    }

    /// An entry for the program, without a command unless `lines` have one.
    fs::path entry(const std::string& name, const std::string& lines) const {
        return temporary.write(name, "[Desktop Entry]\nType=Application\nName=Program\n" + lines);
    }
    std::string command() const { return "Exec=" + (folder / "program").string(); }

    /// Waits for what the program tells of itself, by name. Empty when it tells nothing.
    std::map<std::string, std::string> report() {
        EXPECT_TRUE(waitUntil([this] { return fs::exists(folder / "report"); }));
        std::map<std::string, std::string> values;
        std::ifstream lines(folder / "report");
        for (std::string line; std::getline(lines, line);)
            values[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
        fs::remove(folder / "report");
        if (values.contains("PROCESS"))
            programs.insert(std::stoi(values["PROCESS"]));
        return values;
    }

    /// Lets go of what was started on the way.
    static bool hasNoChildren() {
        return waitUntil([] { return ::waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD; });
    }

    /// The signals of a set of this process's, without those that the C library keeps for itself.
    static unsigned long long signalsOf(pid_t process, const std::string& set) {
        std::ifstream lines("/proc/" + std::to_string(process) + "/status");
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with(set + ":\t"))
                return std::stoull(line.substr(set.size() + 2), nullptr, 16) & 0x7fffffff;
        }
        return ~0ULL;
    }

    const TemporaryFolder temporary;
    const fs::path& folder = temporary.path();
    std::set<pid_t> programs;
    SimulatedSystemLog log;
    ApplicationLauncher launcher{{VELMORQUIT, "--start-entry"}, log};
};

TEST_F(ApplicationLauncherTest, WhatIsStartedHasNothingOfThisProgram) {
    const fs::path path = entry("a program.desktop", command() + " %U a%%b\nStartupNotify=true\n");
    {
        const Variable startup("DESKTOP_STARTUP_ID", "id_TIME1"),
            token("XDG_ACTIVATION_TOKEN", "t");
        const Variable stream("JOURNAL_STREAM", "1:2"), shared("SHARED", "yes");
        sigset_t blocked, former;
        ::sigemptyset(&blocked);
        ::sigaddset(&blocked, SIGUSR1);
        ::pthread_sigmask(SIG_BLOCK, &blocked, &former);
        const auto formerAction = std::signal(SIGUSR2, SIG_IGN);
        launcher.launch(path);
        std::signal(SIGUSR2, formerAction);
        ::pthread_sigmask(SIG_SETMASK, &former, nullptr);
    }
    auto told = report();
    EXPECT_EQ(told["ARGUMENTS"], "a%b");
    EXPECT_EQ(told["SHARED"], "yes");
    EXPECT_EQ(told["GIO_LAUNCHED_DESKTOP_FILE_PID"], told["PROCESS"]);
    for (const char* name : {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN", "JOURNAL_STREAM"})
        EXPECT_FALSE(told.contains(name)) << name;

    ASSERT_TRUE(told.contains("PROCESS"));
    const pid_t process = std::stoi(told["PROCESS"]);
    const fs::path proc = "/proc/" + std::to_string(process);
    EXPECT_TRUE(hasNoChildren()) << "neither the program nor what started it";
    EXPECT_NE(::getsid(process), ::getsid(0));
    EXPECT_NE(::getpgid(process), ::getpgid(0));
    for (const char* stream : {"fd/0", "fd/1", "fd/2"})
        EXPECT_EQ(fs::read_symlink(proc / stream), "/dev/null") << stream;
    EXPECT_EQ(fs::read_symlink(proc / "cwd"), fs::canonical(std::getenv("HOME")));
    for (const char* set : {"SigIgn", "SigBlk"})
        EXPECT_EQ(signalsOf(process, set), 0U) << set;
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(ApplicationLauncherTest, WhatCannotBeStartedIsALineInTheLog) {
    const std::vector<std::string> paths{
        folder / "vanished.desktop",
        folder,
        temporary.write("bytes.desktop", std::string("\0\xff[Desktop Entry", 16)),
        entry("commandless.desktop", ""),
        entry("uninstalled.desktop", "Exec=/nonexistent/program\n"),
        entry("quote.desktop", command() + " \"unfinished\n"),
        entry("entry.txt", command() + "\n"),
    };
    for (const std::string& path : paths) {
        log.lines.clear();
        launcher.launch(path);
        EXPECT_TRUE(waitUntil([this] { return !log.lines.empty(); })) << path;
        EXPECT_THAT(log.lines, testing::ElementsAre("Velmor Quit: non riesco a riaprire " + path));
    }
    EXPECT_TRUE(hasNoChildren());

    log.lines.clear();
    ApplicationLauncher({"/nonexistent/starter"}, log).launch(folder);
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(ApplicationLauncherTest, OnlyOneWithoutACommandIsStartedByTheBus) {
    PrivateBus server;
    server.offer("org.example.Only", (folder / "program").string());
    const Variable bus("DBUS_SESSION_BUS_ADDRESS", server.address());
    launcher.launch(entry("org.example.Only.desktop", "DBusActivatable=true\n"));
    EXPECT_TRUE(report().contains("DBUS_STARTER_ADDRESS"));
    server.halt();
    launcher.launch(entry("org.example.Both.desktop", command() + "\nDBusActivatable=true\n"));
    EXPECT_EQ(report()["DBUS_SESSION_BUS_ADDRESS"], server.address());
    EXPECT_TRUE(log.lines.empty());
    server.stop();
    EXPECT_TRUE(waitUntil([this] { return !log.lines.empty(); })) << "the bus went";
}

} // namespace
} // namespace velmorquit
