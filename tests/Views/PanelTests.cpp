#include "Views/AppRow.h"
#include "Views/MemoryBar.h"
#include "Views/PanelStory.h"

#include <QLabel>
#include <QScrollBar>
#include <QTest>

namespace velmorquit {
namespace {

using PanelTest = PanelStory;

/// Which of the blocks are on the screen.
std::string blocks(const PanelFrame& frame) {
    std::string shown;
    for (const char* name :
         {"normalContent", "StubbornAppsCard", "BackupCard", "BackupFailedCard"}) {
        const auto* block = frame.findChild<QWidget*>(QString::fromLatin1(name));
        if (block && block->isVisible())
            shown += std::string(shown.empty() ? "" : " ") + name;
    }
    return shown;
}

TEST_F(PanelTest, ShowsWhatTheRunIsDoing) {
    desktop.open("Nota", 300_MiB).quitsAfter(2s);
    desktop.open("Testardo", 100_MiB).ignoresAsking();
    start();
    EXPECT_EQ(blocks(*frame), "normalContent");
    EXPECT_EQ(text("appCount"), "2 app aperte");
    EXPECT_EQ(text("status"), "2 app · circa 400 MB da liberare");
    EXPECT_TRUE(find("quitAll")->isEnabled());

    click("quitAll");
    EXPECT_EQ(desktop.log(), Lines("0.00 quit Nota", "0.00 quit Testardo"));
    EXPECT_EQ(blocks(*frame), "normalContent");
    EXPECT_EQ(text("status"), "Chiusura di 2 app in corso…");
    EXPECT_FALSE(find("quitAll")->isEnabled());
    EXPECT_FALSE(find("PowerActionPicker")->isEnabled());
    EXPECT_TRUE(isShown("AppList"));

    advance(6s);
    EXPECT_EQ(blocks(*frame), "StubbornAppsCard");
    click("leaveOpen");
    advance(1s);
    EXPECT_EQ(blocks(*frame), "normalContent");
    EXPECT_EQ(text("status"), "Chiusa 1 app");
    EXPECT_EQ(text("freed"), "liberati 300 MB");
    EXPECT_TRUE(find("quitAll")->isEnabled());

    advance(QuitController::resultTime);
    EXPECT_FALSE(isShown("freed"));
    EXPECT_EQ(text("status"), "1 app · circa 100 MB da liberare");
}

} // namespace
} // namespace velmorquit
