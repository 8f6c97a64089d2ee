#include "Desktop/DesktopStory.h"

#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QJsonArray>

#include <cstdlib>
#include <sstream>

namespace velmorquit {
namespace {

using testing::Contains;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// With a backup tool, an external drive named Photos and a power service, all of them stand-ins.
class AfterQuit : public DesktopStory {
protected:
    void SetUp() override {
        std::filesystem::create_directory(folder());
        ::setenv("VELMOR_STAND_IN_SYSTEM_BUS", bus.address().c_str(), 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_TOOL", STAND_INS "/backup-tool", 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_DESTINATIONS", (folder() / "destinations").c_str(), 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_SECONDS", "3", 1);
        ASSERT_EQ(run({STAND_INS "/backup-tool", "prepare"}).status, 0);
        prefer({{"backupFirst", true}, {"ejectDrives", true}});
    }

    /// So many attempts to unmount the drive fail.
    void startAll(int busy = 0) {
        services = std::make_unique<Child>(
            std::vector<std::string>{STAND_INS "/system-services", bus.address(),
                                     folder() / "calls", "--busy", std::to_string(busy)});
        await("the system's services", [this] {
            if (!services->isRunning())
                throw std::runtime_error("no services: " + services->output());
            return services->output() == "ready\n";
        });
        startProgram();
        await("the drive", [] { return status()["drives"].toArray().size() == 1; });
    }

    /// What the stand-ins were asked for.
    static std::vector<std::string> calls() {
        std::vector<std::string> lines;
        std::istringstream stream(contents(folder() / "calls"));
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }
    /// Waits until the power service was asked for anything, and a while longer.
    static void awaitPowerCall() {
        await("a call of the power service",
              [] { return contents(folder() / "calls").find("login1") != std::string::npos; });
        linger(1500);
    }

    static std::filesystem::path folder() { return home() / "stand-ins"; }

    /// The program accepts only a bus that lies in the folder of its own virtual desktop.
    static std::string withinTheDesktop() {
        const std::filesystem::path run = std::getenv("XDG_RUNTIME_DIR");
        ::setenv("TMPDIR", run.parent_path().c_str(), 1);
        return "system.";
    }

    PrivateBus bus{withinTheDesktop()};
    std::unique_ptr<Child> services;
};

TEST_F(AfterQuit, TheComputerIsSwitchedOffOnceAfterBackupAndEjection) {
    startAll();
    Child& application = openRude();
    const Outcome answer = control({"quit-all", "--then", "shutDown", "--yes"});
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_FALSE(application.isRunning());
    EXPECT_THAT(answer.text, ContainsRegex("Backup in corso: [1-9][0-9]%"));
    EXPECT_THAT(answer.text, HasSubstr("Finito: 1 app chiusa"));
    EXPECT_THAT(answer.text, HasSubstr("Backup Time Machine completato · 1 disco espulso\n"));
    EXPECT_THAT(status()["drives"].toArray(), IsEmpty());
    awaitPowerCall();
    EXPECT_THAT(calls(), ElementsAre("backup started", "backup completed", "UDisks2 Unmount",
                                     "UDisks2 Eject", "login1 PowerOff"));
}

TEST_F(AfterQuit, ADriveThatStaysBusyIsNamedAndDoesNotKeepTheComputerOn) {
    startAll(3);
    openRude();
    const Outcome answer = control({"quit-all", "--then", "shutDown", "--yes"});
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_THAT(answer.text, HasSubstr("Backup Time Machine completato · Non espulso: Photos\n"));
    awaitPowerCall();
    EXPECT_THAT(calls(), ElementsAre("backup started", "backup completed", "UDisks2 Unmount",
                                     "UDisks2 Unmount", "UDisks2 Unmount", "login1 PowerOff"));
}

TEST_F(AfterQuit, DrivesAreEjectedByThemselvesAsWell) {
    startAll(3);
    const Outcome busy = control({"eject"});
    EXPECT_EQ(busy.status, 1);
    EXPECT_EQ(busy.text, "Ancora collegati: Photos\n");
    const Outcome free = control({"eject"});
    EXPECT_EQ(free.status, 0);
    EXPECT_EQ(free.text, "1 disco espulso\n");
    const Outcome none = control({"eject"});
    EXPECT_EQ(none.status, 1);
    EXPECT_THAT(none.text, HasSubstr("Nessun disco esterno collegato."));
    EXPECT_THAT(calls(), ElementsAre("UDisks2 Unmount", "UDisks2 Unmount", "UDisks2 Unmount",
                                     "UDisks2 Unmount", "UDisks2 Eject"));
}

TEST_F(AfterQuit, ACancelledBackupIsFollowedByNothing) {
    startAll();
    openRude();
    Child quitAll({VELMORCTL, "quit-all", "--then", "restart", "--yes"});
    await("the backup", [] { return phase() == "backingUp"; });
    EXPECT_EQ(control({"backup", "cancel"}).status, 0);
    const Outcome answer = outcomeOf(quitAll);
    EXPECT_EQ(answer.status, 1) << "what was asked for doesn't follow";
    EXPECT_THAT(answer.text, HasSubstr("Backup annullato"));
    linger(2000);
    EXPECT_THAT(calls(), ElementsAre("backup started", "backup stopped"));
}

TEST_F(AfterQuit, ALetterThatIsNotSavedKeepsTheComputerOn) {
    write(home() / "letter.txt", "");
    startAll();
    Child& editor = open({"mousepad", home() / "letter.txt"});
    EXPECT_EQ(control({"exclude", "mousepad"}).status, 0);
    focus("mousepad");
    type("not saved");
    EXPECT_EQ(control({"quit-all", "--then", "shutDown", "--yes"}).status, 0);
    linger(8000);
    EXPECT_THAT(calls(), Not(Contains(HasSubstr("login1")))) << "it is asked about, and waited for";
    EXPECT_TRUE(editor.isRunning());
    EXPECT_EQ(control({"cancel"}).status, 0);
}

} // namespace
} // namespace velmorquit
