#include "Linux/Proc/ProcKernel.h"
#include "Linux/Sound/PulseAudioProcesses.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;
using Ids = std::set<ProcessId>;

/// A made-up /proc and /sys.
class ProcTreeTest : public testing::Test {
protected:
    void write(const std::string& file, const std::string& content) const {
        folder_.write(file, content);
    }

    void addProcess(ProcessId id, ProcessId parent, int startTime, const std::string& unit = "",
                    const std::string& name = "name") {
        const std::string folder = "proc/" + std::to_string(id) + '/';
        write(folder + "stat", std::to_string(id) + " (" + name + ") S " + std::to_string(parent) +
                                   " 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 " +
                                   std::to_string(startTime) + " 0 0\n");
        write(folder + "cgroup", "1:cpu:/x\n0::/user.slice/user-0.slice" + unit + "\n");
    }

    void addExecutable(ProcessId id, const std::string& path, const std::string& innerIds) {
        const std::string folder = "proc/" + std::to_string(id) + '/';
        write(folder + "status", "Name:\tx\nNSpid:\t" + innerIds + "\nThreads:\t1\n");
        fs::create_symlink(path, root_ / (folder + "exe"));
    }

    [[nodiscard]] std::string proc() const { return root_ / "proc"; }
    [[nodiscard]] ProcKernel kernel() const { return ProcKernel(proc(), root_ / "sys"); }

    /// "process<the one responsible", where there is another.
    static std::string responsible(const ProcKernel& kernel) {
        std::map<ProcessId, ProcessId> answers;
        for (const ProcessEntry& process : kernel.processTable())
            answers[process.id] = process.responsible;
        std::string text;
        for (const auto& [id, other] : answers)
            text += std::to_string(id) + (other ? '<' + std::to_string(other) : "") + ' ';
        return text;
    }

private:
    const TemporaryFolder folder_;
    const fs::path& root_ = folder_.path();
};

TEST_F(ProcTreeTest, AllProcessesOfAUnitAnswerToTheApplicationInIt) {
    const std::string app = "/app.slice/app-gnome-note-10.scope";
    addProcess(10, 1, 500, app);
    addProcess(11, 10, 510, app + "/tab");
    addProcess(12, 1, 520, app);
    addProcess(20, 1, 400, "/app.slice/dbus.service");
    addProcess(30, 1, 300, "/session-2.scope", "a) S 7 (b");
    ProcKernel kernel(proc());
    EXPECT_EQ(responsible(kernel), "10 11<10 12<10 20 30 ");
    // A script that started the program is older, and yet not what the user sees.
    kernel.setWindowOwners([] { return Ids{12}; });
    EXPECT_EQ(responsible(kernel), "10<12 11<12 12 20 30 ");
    for (const auto& [id, answers] : {std::pair(11, 12), std::pair(12, 12), std::pair(99, 99)})
        EXPECT_EQ(kernel.responsibleProcesses({id}), Ids{answers});
}

// Units are remembered, but neither for an id that another process has now nor for a process that
// is so young that it is still to be moved.
TEST_F(ProcTreeTest, AProcessIsMovedToItsUnitSoonAfterItsStart) {
    const std::string app = "/app.slice/app-note-10.scope";
    constexpr int notYet = 2'000'000'000;
    addProcess(10, 1, 1, app);
    addProcess(11, 1, 2);
    addProcess(12, 1, notYet, "/session-2.scope");
    const ProcKernel kernel(proc());
    EXPECT_EQ(responsible(kernel), "10 11 12 ");
    addProcess(12, 1, notYet, app);
    EXPECT_EQ(responsible(kernel), "10 11 12<10 ");
    fs::remove_all(proc() + "/11");
    EXPECT_EQ(responsible(kernel), "10 12<10 ");
    addProcess(11, 10, 3, app);
    EXPECT_EQ(responsible(kernel), "10 11<10 12<10 ")
        << "a later process with the same id is another one";
    // One whose parent ends gets another.
    for (const char* other : {"/10", "/12"})
        fs::remove_all(proc() + other);
    addProcess(11, 7, 3, app);
    EXPECT_EQ(kernel.processTable().front().parent, 7);
}

TEST_F(ProcTreeTest, AFootprintFollowsTheCountsOfPages) {
    addProcess(10, 1, 1);
    write("proc/10/statm", "900 30 20 1 0 10 0");
    write("proc/10/status", "RssAnon:\t 10 kB\nVmSwap:\t 5 kB\n");
    const ProcKernel kernel(proc());
    EXPECT_EQ(kernel.footprint(10), 15U * 1024) << "before any look at the processes";
    EXPECT_EQ(kernel.processTable().size(), 1U);
    EXPECT_EQ(kernel.footprint(10), 15U * 1024);
    write("proc/10/status", "RssAnon:\t 40 kB\n");
    write("proc/10/statm", "900 60 20 1 0 10 0");
    EXPECT_EQ(kernel.footprint(10), 40U * 1024);
    fs::remove_all(proc() + "/10");
    EXPECT_FALSE(kernel.footprint(10));
}

TEST_F(ProcTreeTest, WithoutUnitsAHelperAnswersToTheNearestProcessWithWindows) {
    addProcess(10, 1, 1);
    addProcess(11, 10, 2);
    addProcess(12, 11, 3);
    addProcess(40, 41, 4);
    addProcess(41, 40, 5);
    ProcKernel kernel(proc());
    EXPECT_EQ(kernel.responsibleProcesses({12}), Ids{12});
    kernel.setWindowOwners([] { return Ids{10}; });
    EXPECT_EQ(kernel.responsibleProcesses({12}), Ids{10});
    EXPECT_EQ(kernel.responsibleProcesses({40}), Ids{40}) << "a circle has an end";
}

TEST_F(ProcTreeTest, WhatIsDamagedOrHiddenIsLeftOut) {
    addProcess(10, 1, 1);
    write("proc/11/stat", "11 (x) S");
    write("proc/12/stat", "");
    fs::create_directories(fs::path(proc()) / "13");
    write("proc/self/stat", "14 (x) S 1 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 1 0");
    write("proc/15x/stat", "15 (x) S 1 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 1 0");
    EXPECT_EQ(ProcKernel(proc()).processTable().size(), 1U);
    const ProcKernel nowhere("/nonexistent", "/nonexistent");
    EXPECT_TRUE(nowhere.processTable().empty());
    EXPECT_EQ(nowhere.totalMemory(), 0U);
    EXPECT_FALSE(nowhere.memoryPages());
    EXPECT_FALSE(nowhere.footprint(10));
    EXPECT_FALSE(nowhere.machineModel());
    EXPECT_EQ(nowhere.processorBrand(), "");
}

TEST_F(ProcTreeTest, MemoryInUseIsOfProgramsAndTheKernelAndWhatIsCompressed) {
    write("proc/meminfo", "MemTotal:  1000 kB\nCached: 500 kB\nAnonPages: 100 kB\nShmem: 20 kB\n"
                          "SUnreclaim: 3 kB\nKernelStack: 4 kB\nPageTables: 5 kB\nZswap: 6 kB\n");
    const auto pages = kernel().memoryPages();
    ASSERT_TRUE(pages);
    EXPECT_EQ(kernel().totalMemory(), 1000U << 10);
    EXPECT_EQ(pages->internal * pages->pageSize, 120U << 10);
    EXPECT_EQ(pages->wired * pages->pageSize, 12U << 10);
    EXPECT_EQ(pages->compressor * pages->pageSize, 6U << 10);
    write("proc/vmstat", "nr_free_pages 5\nnr_zspages 100\n");
    EXPECT_EQ(kernel().memoryPages()->compressor, 100U * 4096);
    write("sys/class/dmi/id/sys_vendor", "Acme Inc.\n");
    write("sys/class/dmi/id/product_name", "Notebook 14 \n");
    EXPECT_EQ(kernel().machineModel(), "Acme Inc. Notebook 14");
}

TEST_F(ProcTreeTest, AStreamOfASandboxBelongsToTheProcessThatHasItsIdInThere) {
    addExecutable(50, "/usr/bin/player", "50");
    addExecutable(60, "/app/bin/browser", "60\t2");
    addExecutable(61, "/app/bin/other", "61\t2");
    addExecutable(62, "/app/bin/twin", "62\t3");
    addExecutable(63, "/app/bin/twin", "63\t3");
    struct Case {
        std::optional<ProcessId> process;
        const char* binary;
        Ids found;
    };
    for (const Case& one :
         {Case{3, "twin", {62, 63}}, Case{50, "player", {50}}, Case{50, "", {50}},
          Case{2, "browser", {60}}, Case{50, "browser", {}}, Case{std::nullopt, "player", {}}})
        EXPECT_EQ(processesOfStream({.process = one.process, .binary = one.binary}, proc()),
                  one.found)
            << one.binary;
}

} // namespace
} // namespace velmorquit
