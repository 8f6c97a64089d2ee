#include "Codecs/PropertyList.h"
#include "Desktop/DesktopStory.h"

#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <cstdlib>

namespace velmorquit {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Stands in for the service that switches the computer off, and notes what it is asked for.
class StandInLogin final : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        calls.push_back(message.member().toStdString());
        bus.send(message.createReply());
        return true;
    }

    std::vector<std::string> calls;
};

/// A backup tool that is done at once and keeps its records in the home folder.
constexpr const char* backupTool = R"(#!/bin/sh
echo "$@" >>"$HOME/tool.log"
case $1 in
startbackup)
    sleep 2
    date=$(date -u +%Y-%m-%dT%H:%M:%SZ)
    sed -i "s|<array/>|<array><date>$date</date></array>|" "$HOME/records"
    ;;
status)
    echo '<plist version="1.0"><dict><key>Running</key><true/>'
    echo '<key>Percent</key><real>0.4</real></dict></plist>'
    ;;
esac
)";

class AfterQuit : public DesktopStory {
protected:
    void SetUp() override {
        QDBusConnection connection = bus.connect();
        ASSERT_TRUE(connection.registerVirtualObject("/", &login, QDBusConnection::SubPath));
        ASSERT_TRUE(connection.registerService("org.freedesktop.login1"));
        write(home() / "tool", backupTool);
        write(home() / "records",
              "<plist version=\"1.0\"><dict><key>Destinations</key><array><dict>"
              "<key>SnapshotDates</key><array/></dict></array></dict></plist>");
        std::filesystem::permissions(home() / "tool", std::filesystem::perms::owner_all);
        write(preferencesFile(), PropertyList::encode(Value::Dictionary{{"backupFirst", true}}));
        ::setenv("VELMOR_STAND_IN_SYSTEM_BUS", bus.address().c_str(), 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_TOOL", (home() / "tool").c_str(), 1);
        ::setenv("VELMOR_STAND_IN_BACKUP_DESTINATIONS", (home() / "records").c_str(), 1);
    }

    /// The program accepts only a bus that lies in the folder of its own virtual desktop.
    static std::string withinTheDesktop() {
        const std::filesystem::path run = std::getenv("XDG_RUNTIME_DIR");
        ::setenv("TMPDIR", run.parent_path().c_str(), 1);
        return "system.";
    }

    PrivateBus bus{withinTheDesktop()};
    StandInLogin login;
};

TEST_F(AfterQuit, TheComputerIsSwitchedOffOnceAfterTheBackup) {
    startProgram();
    Child& application = openRude();
    const Outcome answer = control({"quit-all", "--then", "shutDown", "--yes"});
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_FALSE(application.isRunning());
    EXPECT_THAT(answer.text, HasSubstr("Backup in corso: 40%"));
    EXPECT_THAT(answer.text, HasSubstr("Finito: 1 app chiusa"));
    EXPECT_THAT(answer.text, HasSubstr("Backup Time Machine completato"));
    await("the call", [this] { return !login.calls.empty(); });
    linger(1500);
    EXPECT_EQ(login.calls, std::vector<std::string>{"PowerOff"});
}

TEST_F(AfterQuit, ACancelledBackupIsFollowedByNothing) {
    startProgram();
    openRude();
    Child quitAll({VELMORCTL, "quit-all", "--then", "restart", "--yes"});
    await("the backup", [] { return phase() == "backingUp"; });
    EXPECT_EQ(control({"backup", "cancel"}).status, 0);
    const Outcome answer = outcomeOf(quitAll);
    EXPECT_EQ(answer.status, 1) << "what was asked for doesn't follow";
    EXPECT_THAT(answer.text, HasSubstr("Backup annullato"));
    EXPECT_THAT(contents(home() / "tool.log"), HasSubstr("stopbackup"));
    linger(2000);
    EXPECT_TRUE(login.calls.empty());
}

TEST_F(AfterQuit, ALetterThatIsNotSavedKeepsTheComputerOn) {
    write(home() / "letter.txt", "");
    startProgram();
    Child& editor = open({"mousepad", home() / "letter.txt"});
    EXPECT_EQ(control({"exclude", "mousepad"}).status, 0);
    focus("mousepad");
    type("not saved");
    EXPECT_EQ(control({"quit-all", "--then", "shutDown", "--yes"}).status, 0);
    linger(8000);
    EXPECT_TRUE(login.calls.empty()) << "it is asked about, and waited for";
    EXPECT_TRUE(editor.isRunning());
    EXPECT_EQ(control({"cancel"}).status, 0);
}

} // namespace
} // namespace velmorquit
