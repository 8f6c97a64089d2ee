#include "Linux/Applications/LinuxWorkspace.h"
#include "Linux/SimulatedToplevels.h"
#include "Simulated/SimulatedPorts.h"
#include "Simulated/VirtualLoop.h"
#include "support/Child.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

/// Windows and the account of their processes are made up; desktop entries are files.
class IdentityTest : public testing::Test {
protected:
    // GLib looks only once where the entries are.
    static void SetUpTestSuite() {
        temporary.emplace();
        folder = temporary->path();
        ::setenv("XDG_DATA_HOME", folder.c_str(), 1);
        ::setenv("XDG_DATA_DIRS", "/nonexistent", 1);
        fs::create_directories(folder / "applications");
        for (const char* program : {"paper", "twice", "multi", "quiet", "shown", "strict", "editor",
                                    "wine", "helper.py", "drawer.jar", "toolbox"})
            makeProgram(program);
        fs::create_symlink(folder / "paper", folder / "paper-link");
        fs::create_symlink(folder / "toolbox", folder / "hammer");
        const std::string bin = folder.string() + '/';
        install("writer", "true --writer %U");
        install("paper", "env LANG=C '" + bin + "paper-link' %U");
        install("twice-one", bin + "twice --one");
        install("twice-two", bin + "twice --two");
        install("multi", bin + "multi %U");
        install("multi-settings", bin + "multi --settings", "NoDisplay=true\n");
        install("quiet", bin + "quiet", "NoDisplay=true\n");
        install("strict", bin + "strict --app=mail");
        install("editor", bin + "editor %F");
        install("editor-tty", bin + "editor -t %F", "Terminal=true\n");
        install("wine", bin + "wine start");
        install("helper", "python3 " + bin + "helper.py");
        install("drawer", "sh -c 'exec something'", "TryExec=" + bin + "toolbox\n");
    }
    static void TearDownTestSuite() { temporary.reset(); }

    static void makeProgram(const std::string& name) {
        std::ofstream(folder / name) << "#!/bin/sh\n";
        fs::permissions(folder / name, fs::perms::owner_all);
    }
    static void install(const std::string& id, const std::string& command,
                        const std::string& lines = "") {
        std::ofstream(folder / "applications" / (id + ".desktop"))
            << "[Desktop Entry]\nType=Application\nName=The " + id + "\nExec=" << command << '\n'
            << lines;
    }

    void writeProc(const std::string& file, const std::string& content) {
        fs::create_directories((proc / file).parent_path());
        std::ofstream(proc / file) << content;
    }

    IdentityTest() { fs::create_directories(proc); }
    ~IdentityTest() override { fs::remove_all(proc); }

    /// A window of a new process that runs this; without a folder in front it is in `folder`.
    Toplevel& show(const std::string& className, const std::string& executable,
                   const std::vector<std::string>& arguments = {}, const std::string& title = "") {
        children.push_back(std::make_unique<Child>(std::vector<std::string>{"/bin/sleep", "1000"}));
        const ProcessId id = children.back()->id();
        const std::string place = std::to_string(id);
        writeProc(place + "/stat", place + " (x) S 1 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 500 0\n");
        std::string line = executable + '\0';
        for (const std::string& argument : arguments)
            line += argument + '\0';
        writeProc(place + "/cmdline", line);
        fs::create_symlink(folder / executable, proc / place / "exe");
        fs::create_symlink(folder, proc / place / "cwd");
        const std::uint64_t window = source.windows.size() + 1;
        source.titles[window] = title;
        source.windows.push_back({.window = window,
                                  .process = id,
                                  .machine = {},
                                  .identity = {lowered(className), className, ""}});
        return source.windows.back();
    }

    std::shared_ptr<RunningApplication> last() {
        if (!workspace)
            workspace = std::make_unique<LinuxWorkspace>(
                loop, log, source, LinuxWorkspace::Surroundings{.proc = proc});
        source.tell();
        return workspace->runningApplications().back();
    }

    static inline std::optional<TemporaryFolder> temporary;
    static inline fs::path folder;
    fs::path proc = folder / "proc";
    VirtualLoop loop;
    SimulatedSystemLog log;
    SimulatedToplevels source;
    std::vector<std::unique_ptr<Child>> children;
    std::unique_ptr<LinuxWorkspace> workspace;
};

TEST_F(IdentityTest, GetsBetterForTwoSecondsAndStaysThen) {
    Toplevel& window = show("Soffice", "soffice.bin");
    const auto app = last();
    int told = 0;
    const Handle watch = workspace->observe([&](const WorkspaceChanges& changes) {
        told += static_cast<int>(hasAnyOf(changes, {WorkspaceEvent::policyChanged}));
    });
    EXPECT_EQ(app->localizedName(), "Soffice");
    EXPECT_FALSE(app->isIdentitySettled());
    window.identity.className = "Unheard";
    source.tell();
    EXPECT_EQ(app->localizedName(), "Soffice") << "another word is no better";
    EXPECT_EQ(told, 0);
    loop.advance(1900ms);
    window.identity.className = "Writer";
    source.tell();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(app->localizedName(), "The writer");
    EXPECT_EQ(app->bundleIdentifier(), "writer");
    EXPECT_EQ(app->bundlePath(), (folder / "applications/writer.desktop").string());
    EXPECT_THAT(app->otherIdentities(), UnorderedElementsAre("Soffice", "Unheard"));
    EXPECT_TRUE(app->isIdentitySettled());
    window.identity.className = "Paper";
    source.tell();
    EXPECT_EQ(app->bundleIdentifier(), "writer");

    Toplevel& late = show("Slow", "slow");
    const auto slow = last();
    loop.advance(2s);
    EXPECT_TRUE(slow->isIdentitySettled());
    late.identity.className = "Writer";
    source.tell();
    EXPECT_EQ(slow->localizedName(), "Slow");
    EXPECT_THAT(slow->otherIdentities(), ElementsAre("writer"));
}

TEST_F(IdentityTest, LooksAgainAtTheUnitWhenTheTimeIsOverWithoutAnyChangeOfTheWindow) {
    const ProcessId id = show("Soffice", "soffice.bin").process;
    const auto app = last();
    writeProc(std::to_string(id) + "/cgroup", "0::/user.slice/app-gnome-writer-12.scope\n");
    loop.advance(2s);
    EXPECT_EQ(app->bundleIdentifier(), "writer");
    EXPECT_THAT(app->otherIdentities(), ElementsAre("Soffice"));
}

TEST_F(IdentityTest, FindsAnEntryByTheProgramThatRuns) {
    struct Case {
        std::string executable;
        std::vector<std::string> arguments;
        std::optional<std::string> id;
    };
    const std::string bin = folder.string() + '/';
    const std::vector<Case> cases{
        {"paper", {}, "paper"},
        {"paper (deleted)", {}, "paper"},
        {"/opt/elsewhere/editor.bin", {}, "editor"},
        {"/usr/bin/python3.11", {"-W", "ignore", "helper.py", "--x"}, "helper"},
        {"/usr/bin/python3", {"-m", "office.helper"}, "helper"},
        {"/usr/bin/python3", {"-c", "import helper", "helper.py"}, std::nullopt},
        {"/usr/bin/java", {"-cp", "a:b", "-Xmx1g", "-jar", bin + "paper.jar"}, "paper"},
        {"/usr/bin/java", {"-cp", "helper.jar", "org.example.Editor"}, "editor"},
        {"/bin/dash", {"multi"}, "multi"},
        {"/usr/bin/wish8.6", {bin + "paper-link", "--"}, "paper"},
        {"toolbox", {}, "drawer"},
        {"twice", {"--one"}, std::nullopt},
        {"quiet", {}, std::nullopt},
        {"strict", {}, std::nullopt},
        {"strict", {"--app=mail"}, "strict"},
        {"wine", {"start"}, std::nullopt},
    };
    for (const Case& one : cases) {
        show("Toplevel", one.executable, one.arguments);
        const auto path = last()->bundlePath();
        const auto id = path ? std::optional(fs::path(*path).stem().string()) : std::nullopt;
        EXPECT_EQ(id, one.id) << one.executable << testing::PrintToString(one.arguments);
        const auto app = last();
        EXPECT_TRUE(app->localizedName() == "Toplevel" ||
                    app->otherIdentities() == std::vector<std::string>{"Toplevel"})
            << "what excluded it earlier";
    }
}

TEST_F(IdentityTest, WithoutAnEntryItHasANameThatAPersonWouldGiveIt) {
    struct Case {
        std::string className;
        std::string executable;
        std::vector<std::string> arguments;
        std::string title;
        std::string name;
        std::string key;
    };
    const std::string jar = "/opt/jotter/jotter.jar";
    const std::vector<Case> cases{
        {"Xchart", "xchart", {}, "a - b", "Xchart", "Xchart"},
        {"org-jot-jEdit",
         "/usr/bin/java",
         {"-jar", jar},
         "Jotter - Untitled-1",
         "Jotter",
         "jotter"},
        {"org-jot-jEdit", "/usr/bin/java", {"-jar", jar}, "x.txt – Jot Pad", "Jot Pad", "jotter"},
        {"org-jot-jEdit", "/usr/bin/java", {"-jar", jar}, "Jot - /etc/hosts", "Jot", "jotter"},
        {"org-jot-jEdit", "/usr/bin/java", {"-jar", jar}, "no - notes.txt", "jotter", "jotter"},
        {"Toplevel", "/usr/bin/python3", {"/opt/ledger/main.py"}, "", "ledger", "ledger"},
        {"Toplevel", "/usr/bin/python3", {"/home/ada/main.py"}, "", "main", "main"},
        {"main.py", "/usr/bin/python3", {"-c", "x"}, "New — Ledger", "Ledger", "main.py"},
        {"Toplevel", "/usr/bin/python3", {"-c", "x"}, "Sums", "Toplevel", "Toplevel"},
    };
    for (const Case& one : cases) {
        show(one.className, one.executable, one.arguments, one.title);
        const auto app = last();
        EXPECT_EQ(app->localizedName(), one.name) << one.title;
        EXPECT_EQ(app->bundleIdentifier().value_or(one.name), one.key) << one.title;
        EXPECT_FALSE(app->bundlePath());
    }
}

TEST(RunProgram, IsReadAtOnceHoweverLongItIs) {
    std::string path;
    for (int part = 0; part < 400'000; ++part)
        path += "main/";
    EXPECT_TRUE(programOf("/usr/bin/python3", {"python3", path}, "/home/a").isUnknown());
    const std::string deep = path.substr(0, 4000);
    EXPECT_EQ(programOf("/usr/bin/python3", {"python3", "note/" + deep}, "/opt").name, "note");
    EXPECT_EQ(programOf("/usr/bin/python3", {"python3", "/opt//note///main.py"}, "/").name, "note");
    EXPECT_EQ(programOf("/usr/bin/python3", {"python3", "main.py"}, "/home/a").name, "main");
    EXPECT_EQ(programOf("/usr/bin/python3", {"python3", "src/main.py"}, "/root").name, "main");
}

TEST_F(IdentityTest, TakesANameFromATitleThatComesLateAndKeepsIt) {
    show("Toplevel", "/usr/bin/python3", {"ledger.py"});
    const auto app = last();
    EXPECT_EQ(app->localizedName(), "ledger");
    for (const char* title : {"One - Ledger", "Two - Great Ledger"}) {
        source.titles[1] = title;
        source.tell();
        loop.advance(3s);
        EXPECT_EQ(app->localizedName(), "Ledger");
    }
    EXPECT_EQ(app->bundleIdentifier(), "ledger");
    EXPECT_THAT(app->otherIdentities(), ElementsAre("Toplevel"));
}

} // namespace
} // namespace velmorquit
