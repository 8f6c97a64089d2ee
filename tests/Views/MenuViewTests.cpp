#include "Views/MenuView.h"

#include <QTest>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmorquit {
namespace {

class MenuViewTest : public testing::Test {
protected:
    /// Writes its title into `chosen` when it is chosen.
    MenuEntry entry(const std::string& title) {
        return {.id = title == "Leave" || title == "Reopen" ? title : "quit",
                .title = title,
                .isEnabled = title != "None",
                .action = [title, this] { chosen += title + ';'; }};
    }
    /// The titles, with what can't be chosen in brackets.
    static std::string titles(const QMenu& menu) {
        std::string text;
        for (const QAction* action : menu.actions()) {
            const std::string title = action->text().toStdString();
            text += action->isSeparator() ? "|" : action->isEnabled() ? title : '(' + title + ')';
            text += ' ';
        }
        return text;
    }

    std::string chosen;
};

TEST_F(MenuViewTest, ListensToItsKeysDoesWhatIsChosenAndHasSwitchesAndFurtherMenus) {
    Menu entries{entry("Quit R&D"), {}, entry("On"), {}, entry("Leave")};
    entries[0].symbol = "power";
    entries[2].isChecked = true;
    entries[3] = {.id = "more", .title = "More", .submenu = {entry("Inner"), entries[2]}};
    entries[4].key = 'Q';
    const auto menu = makeMenu(entries);
    EXPECT_EQ(titles(*menu), "Quit R&&D | On More Leave ");
    const auto actions = menu->actions();
    EXPECT_FALSE(actions[0]->icon().isNull());
    EXPECT_TRUE(actions[4]->icon().isNull());
    EXPECT_TRUE(actions[2]->isChecked());
    const QMenu* further = actions[3]->menu();
    ASSERT_TRUE(further);
    EXPECT_EQ(titles(*further), "Inner On ");
    EXPECT_FALSE(further->actions().first()->isCheckable());
    menu->popup({0, 0});
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menu.get()));
    QTest::keyClick(menu.get(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_FALSE(menu->isVisible());
    for (QAction* action : {actions[0], further->actions().first(), actions[2]})
        action->trigger();
    EXPECT_EQ(chosen, "Leave;Quit R&D;Inner;On;");
}

TEST_F(MenuViewTest, WhileAKeptOneIsOpenOnlyTitlesChangeUntilItIsClosedByAChoice) {
    KeptMenu kept;
    const auto set = [&](const std::vector<std::string>& titles) {
        Menu menu;
        for (const std::string& title : titles)
            menu.push_back(entry(title));
        kept.setEntries(menu);
        return MenuViewTest::titles(kept.menu());
    };
    int openings = 0;
    kept.onOpen = [&] { ++openings; };
    set({"One", "Leave"});
    Q_EMIT kept.menu().aboutToShow();
    EXPECT_EQ(openings, 1);
    EXPECT_EQ(set({"None", "Leave"}), "(None) Leave ");
    EXPECT_EQ(set({"Two", "Reopen", "Leave"}), "(None) Leave ");
    EXPECT_EQ(set({"Three", "Reopen", "Leave"}), "(None) Leave ");
    Q_EMIT kept.menu().aboutToHide();
    QCoreApplication::processEvents();
    EXPECT_EQ(titles(kept.menu()), "Three Reopen Leave ");
    EXPECT_EQ(set({"One", "Leave"}), "One Leave ");
    Q_EMIT kept.menu().aboutToShow();
    set({"Two", "Reopen", "Leave"});
    kept.menu().actions().first()->trigger();
    EXPECT_EQ(chosen, "One;") << "that is what could be read there";
    QCoreApplication::processEvents();
    EXPECT_EQ(titles(kept.menu()), "Two Reopen Leave ");
}

} // namespace
} // namespace velmorquit
