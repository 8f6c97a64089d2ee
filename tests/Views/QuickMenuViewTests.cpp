#include "Views/QuickMenuView.h"

#include <QTest>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace velmorquit {
namespace {

using Command = QuickMenuEntry::Command;

QuickMenuEntry entry(Command command, std::string title, bool isEnabled = true) {
    return {.command = command,
            .title = std::move(title),
            .symbol = command == Command::quit ? "power" : "",
            .isEnabled = isEnabled,
            .key = command == Command::exit ? 'Q' : '\0'};
}

/// The titles, with what can't be chosen in brackets.
std::string titles(const QMenu& menu) {
    std::string text;
    for (const QAction* action : menu.actions()) {
        const std::string title = action->text().toStdString();
        text += action->isSeparator() ? "|" : action->isEnabled() ? title : '(' + title + ')';
        text += ' ';
    }
    return text;
}

TEST(QuickMenuViewTest, APoppedUpMenuListensToItsKeysAndTellsWhatIsChosen) {
    std::string chosen;
    const auto menu =
        makeMenu({entry(Command::quit, "Quit R&D"), {}, entry(Command::exit, "Leave")},
                 [&](const QuickMenuEntry& entry) { chosen += entry.title + ';'; });
    EXPECT_EQ(titles(*menu), "Quit R&&D | Leave ");
    EXPECT_FALSE(menu->actions().first()->icon().isNull());
    EXPECT_TRUE(menu->actions().last()->icon().isNull());
    menu->popup({0, 0});
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menu.get()));
    QTest::keyClick(menu.get(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(chosen, "Leave;");
    EXPECT_FALSE(menu->isVisible());
    menu->actions().first()->trigger();
    EXPECT_EQ(chosen, "Leave;Quit R&D;");
}

class KeptMenuTest : public testing::Test {
protected:
    KeptMenuTest() {
        kept.setEntries({entry(Command::quit, "One"), entry(Command::exit, "Leave")});
    }

    [[nodiscard]] std::string shown() { return titles(kept.menu()); }
    void open() { Q_EMIT kept.menu().aboutToShow(); }
    void close() {
        Q_EMIT kept.menu().aboutToHide();
        QCoreApplication::processEvents();
    }

    std::string chosen;
    KeptMenu kept{[this](const QuickMenuEntry& entry) { chosen += entry.title + ';'; }};
};

TEST_F(KeptMenuTest, WhileItIsOpenOnlyTitlesChange) {
    open();
    kept.setEntries({entry(Command::quit, "None", false), entry(Command::exit, "Leave")});
    EXPECT_EQ(shown(), "(None) Leave ");
    kept.setEntries({entry(Command::quit, "Two"), entry(Command::reopen, "Reopen"),
                     entry(Command::exit, "Leave")});
    kept.setEntries({entry(Command::quit, "Three"), entry(Command::reopen, "Reopen"),
                     entry(Command::exit, "Leave")});
    EXPECT_EQ(shown(), "(None) Leave ");
    close();
    EXPECT_EQ(shown(), "Three Reopen Leave ");
    kept.setEntries({entry(Command::exit, "Leave")});
    EXPECT_EQ(shown(), "Leave ");
}

TEST_F(KeptMenuTest, TellsWhatIsChosenAndThatClosesIt) {
    bool isOpened = false;
    kept.onOpen = [&] { isOpened = true; };
    open();
    EXPECT_TRUE(isOpened);
    kept.setEntries({entry(Command::quit, "Two"), entry(Command::openPanel, "Panel"),
                     entry(Command::exit, "Leave")});
    kept.menu().actions().first()->trigger();
    EXPECT_EQ(chosen, "One;") << "that is what could be read there";
    QCoreApplication::processEvents();
    EXPECT_EQ(shown(), "Two Panel Leave ");
}

} // namespace
} // namespace velmorquit
