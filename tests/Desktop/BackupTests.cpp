#include "Desktop/DesktopStory.h"

namespace velmorquit {
namespace {

using testing::HasSubstr;

using RealBackup = DesktopStory;

TEST_F(RealBackup, IsMadeByARunAndGivesTheFilesBack) {
    const std::string tool =
        (std::filesystem::path(VELMORQUIT).parent_path() / "velmorquit-tmutil").string();
    const std::filesystem::path documents = home() / "Documents";
    const std::filesystem::path disk = home() / "disk";
    write(documents / "letter.txt", "The meeting is on Friday at ten.");
    const Outcome setup = run({tool, "setup", disk, "--source", documents});
    ASSERT_EQ(setup.status, 0) << setup.text;
    prefer({{"backupFirst", true}});
    startProgram();
    Child& application = openRude();
    const Outcome answer = control({"quit-all"});
    EXPECT_EQ(answer.status, 0) << answer.text;
    EXPECT_FALSE(application.isRunning());
    EXPECT_THAT(answer.text, HasSubstr("Backup in corso"));
    EXPECT_THAT(answer.text, HasSubstr("Backup Time Machine completato"));
    const Outcome restored = run({tool, "restore", "latest", "--to", home() / "restored"});
    EXPECT_EQ(restored.status, 0) << restored.text;
    EXPECT_EQ(run({"grep", "-rl", "Friday at ten", home() / "restored"}).status, 0);
}

} // namespace
} // namespace velmorquit
