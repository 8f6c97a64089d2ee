#include "Linux/Applications/LinuxWorkspace.h"
#include "Linux/Windows/ToplevelSource.h"
#include "Loop/Subscribers.h"
#include "Simulated/SimulatedPorts.h"
#include "Simulated/VirtualLoop.h"
#include "support/Child.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>

namespace velmorquit {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

/// The windows of a desktop that isn't there.
class SimulatedToplevels final : public ToplevelSource {
public:
    [[nodiscard]] const std::vector<Toplevel>& toplevels() override { return windows; }
    [[nodiscard]] Sight sight() override { return Sight::all; }
    [[nodiscard]] std::string title(std::uint64_t window) override { return titles[window]; }
    [[nodiscard]] const std::set<ProcessId>& shellProcesses() const override { return shell_; }
    [[nodiscard]] std::uint64_t activeWindow() const override { return 0; }
    [[nodiscard]] std::uint64_t focusedWindow() const override { return 0; }
    void askToClose(std::uint64_t) override {}
    void bringToFront(std::uint64_t) override {}
    void ping(std::uint64_t) override {}
    [[nodiscard]] bool isDeaf(std::uint64_t) const override { return false; }
    [[nodiscard]] Image icon(std::uint64_t) override { return {}; }
    [[nodiscard]] bool belongsTo(std::uint64_t, ProcessId) override { return true; }
    [[nodiscard]] Handle observe(std::function<void()> told) override {
        return observers_.add(std::move(told));
    }

    void tell() { observers_.tell(); }

    std::vector<Toplevel> windows;
    std::map<std::uint64_t, std::string> titles;

private:
    std::set<ProcessId> shell_;
    Subscribers observers_;
};

/// Windows and the account of their processes are made up; desktop entries are files.
class IdentityTest : public testing::Test {
protected:
    // GLib looks only once where the entries are.
    static void SetUpTestSuite() {
        temporary.emplace();
        folder = temporary->path();
        ::setenv("XDG_DATA_HOME", folder.c_str(), 1);
        ::setenv("XDG_DATA_DIRS", "/nonexistent", 1);
        for (const char* program : {"paper", "twice", "multi", "quiet", "shown", "strict", "editor",
                                    "wine", "helper.py", "drawer.jar", "toolbox"})
            temporary->writeProgram(program);
        fs::create_symlink(folder / "paper", folder / "paper-link");
        fs::create_symlink(folder / "toolbox", folder / "hammer");
        const std::string bin = folder.string() + '/';
        const std::string hidden = "\nNoDisplay=true";
        const std::pair<const char*, std::string> entries[] = {
            {"writer", "true --writer %U"},
            {"paper", "env LANG=C '" + bin + "paper-link' %U"},
            {"twice-one", bin + "twice --one"},
            {"twice-two", bin + "twice --two"},
            {"multi", bin + "multi %U"},
            {"multi-settings", bin + "multi --settings" + hidden},
            {"quiet", bin + "quiet" + hidden},
            {"strict", bin + "strict --app=mail"},
            {"editor", bin + "editor %F"},
            {"editor-tty", bin + "editor -t %F\nTerminal=true"},
            {"wine", bin + "wine start"},
            {"helper", "python3 " + bin + "helper.py"},
            {"drawer", "sh -c 'exec something'\nTryExec=" + bin + "toolbox"},
        };
        for (const auto& [id, command] : entries)
            temporary->write(std::string("applications/") + id + ".desktop",
                             "[Desktop Entry]\nType=Application\nName=The " + std::string(id) +
                                 "\nExec=" + command + '\n');
    }
    static void TearDownTestSuite() { temporary.reset(); }

    IdentityTest() { fs::create_directories(proc); }
    ~IdentityTest() override { fs::remove_all(proc); }

    /// A window of a new process that runs a program, in `folder` without one in front, with
    /// arguments that follow after '|'.
    Toplevel& show(const std::string& className, const std::string& command,
                   const std::string& title = "") {
        children.push_back(std::make_unique<Child>(std::vector<std::string>{"/bin/sleep", "1000"}));
        const ProcessId id = children.back()->id();
        const fs::path place = proc / std::to_string(id);
        temporary->write(place / "stat",
                         std::to_string(id) +
                             " (x) S 1 1 1 0 -1 0 0 0 0 0 0 0 0 0 20 0 1 0 500 0\n");
        std::string line = command + '|';
        std::ranges::replace(line, '|', '\0');
        temporary->write(place / "cmdline", line);
        fs::create_symlink(folder / line.c_str(), place / "exe");
        fs::create_symlink(folder, place / "cwd");
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

    // The unit counts when the time is over, without any change of the window.
    const ProcessId id = show("Soffice", "soffice.bin").process;
    const auto moved = last();
    temporary->write(proc / std::to_string(id) / "cgroup",
                     "0::/user.slice/app-gnome-writer-12.scope\n");
    loop.advance(2s);
    EXPECT_EQ(moved->bundleIdentifier(), "writer");
    EXPECT_THAT(moved->otherIdentities(), ElementsAre("Soffice"));
}

TEST_F(IdentityTest, FindsAnEntryByTheProgramThatRuns) {
    const std::string bin = folder.string() + '/';
    const std::pair<std::string, const char*> cases[] = {
        {"paper", "paper"},
        {"paper (deleted)", "paper"},
        {"/opt/elsewhere/editor.bin", "editor"},
        {"/usr/bin/python3.11|-W|ignore|helper.py|--x", "helper"},
        {"/usr/bin/python3|-m|office.helper", "helper"},
        {"/usr/bin/python3|-c|import helper|helper.py", ""},
        {"/usr/bin/java|-cp|a:b|-Xmx1g|-jar|" + bin + "paper.jar", "paper"},
        {"/usr/bin/java|-cp|helper.jar|org.example.Editor", "editor"},
        {"/bin/dash|multi", "multi"},
        {"/usr/bin/wish8.6|" + bin + "paper-link|--", "paper"},
        {"toolbox", "drawer"},
        {"twice|--one", ""},
        {"quiet", ""},
        {"strict", ""},
        {"strict|--app=mail", "strict"},
        {"wine|start", ""},
    };
    for (const auto& [command, id] : cases) {
        show("Toplevel", command);
        const auto app = last();
        EXPECT_EQ(fs::path(app->bundlePath().value_or("")).stem(), id) << command;
        EXPECT_TRUE(app->localizedName() == "Toplevel" ||
                    app->otherIdentities() == std::vector<std::string>{"Toplevel"})
            << "what excluded it earlier";
    }
}

TEST_F(IdentityTest, WithoutAnEntryItHasANameThatAPersonWouldGiveIt) {
    struct Case {
        const char *className, *command, *title, *name, *key;
    };
    const char* jar = "/usr/bin/java|-jar|/opt/jotter/jotter.jar";
    const Case cases[] = {
        {"Xchart", "xchart", "a - b", "Xchart", "Xchart"},
        {"org-jot-jEdit", jar, "Jotter - Untitled-1", "Jotter", "jotter"},
        {"org-jot-jEdit", jar, "x.txt – Jot Pad", "Jot Pad", "jotter"},
        {"org-jot-jEdit", jar, "Jot - /etc/hosts", "Jot", "jotter"},
        {"org-jot-jEdit", jar, "no - notes.txt", "jotter", "jotter"},
        {"Toplevel", "/usr/bin/python3|/opt/ledger/main.py", "", "ledger", "ledger"},
        {"Toplevel", "/usr/bin/python3|/home/ada/main.py", "", "main", "main"},
        {"main.py", "/usr/bin/python3|-c|x", "New — Ledger", "Ledger", "main.py"},
        {"Toplevel", "/usr/bin/python3|-c|x", "Sums", "Toplevel", "Toplevel"},
    };
    for (const Case& one : cases) {
        show(one.className, one.command, one.title);
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
    for (const auto& [script, folder, name] :
         {std::tuple("note/" + path.substr(0, 4000), "/opt", "note"),
          std::tuple(std::string("/opt//note///main.py"), "/", "note"),
          std::tuple(std::string("main.py"), "/home/a", "main"),
          std::tuple(std::string("src/main.py"), "/root", "main")})
        EXPECT_EQ(programOf("/usr/bin/python3", {"python3", script}, folder).name, name);
}

TEST_F(IdentityTest, TakesANameFromATitleThatComesLateAndKeepsIt) {
    show("Toplevel", "/usr/bin/python3|ledger.py");
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
