#include "Views/MenuView.h"

#include <QTest>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmorquit {
namespace {

/// Writes its title into `chosen` when it is chosen.
MenuEntry entry(std::string title, std::string& chosen, bool isEnabled = true) {
    return {.id = title == "Leave" || title == "Reopen" ? title : "quit",
            .title = title,
            .isEnabled = isEnabled,
            .action = [title, &chosen] { chosen += title + ';'; }};
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

TEST(MenuViewTest, APoppedUpMenuListensToItsKeysAndDoesWhatIsChosen) {
    std::string chosen;
    Menu entries{entry("Quit R&D", chosen), {}, entry("Leave", chosen)};
    entries.front().symbol = "power";
    entries.back().key = 'Q';
    const auto menu = makeMenu(entries);
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

TEST(MenuViewTest, HasSwitchesAndFurtherMenus) {
    std::string chosen;
    MenuEntry choice = entry("On", chosen);
    choice.isChecked = true;
    const auto menu = makeMenu(
        {choice, {.id = "more", .title = "More", .submenu = {entry("Inner", chosen), choice}}});
    EXPECT_TRUE(menu->actions().first()->isChecked());
    const QMenu* further = menu->actions().last()->menu();
    ASSERT_TRUE(further);
    EXPECT_EQ(titles(*further), "Inner On ");
    EXPECT_FALSE(further->actions().first()->isCheckable());
    further->actions().first()->trigger();
    menu->actions().first()->trigger();
    EXPECT_EQ(chosen, "Inner;On;");
}

class KeptMenuTest : public testing::Test {
protected:
    KeptMenuTest() { kept.setEntries(lines({"One", "Leave"})); }

    Menu lines(const std::vector<std::string>& titles) {
        Menu menu;
        for (const std::string& title : titles)
            menu.push_back(entry(title, chosen, title != "None"));
        return menu;
    }
    [[nodiscard]] std::string shown() { return titles(kept.menu()); }
    void open() { Q_EMIT kept.menu().aboutToShow(); }
    void close() {
        Q_EMIT kept.menu().aboutToHide();
        QCoreApplication::processEvents();
    }

    std::string chosen;
    KeptMenu kept;
};

TEST_F(KeptMenuTest, WhileItIsOpenOnlyTitlesChange) {
    open();
    kept.setEntries(lines({"None", "Leave"}));
    EXPECT_EQ(shown(), "(None) Leave ");
    kept.setEntries(lines({"Two", "Reopen", "Leave"}));
    kept.setEntries(lines({"Three", "Reopen", "Leave"}));
    EXPECT_EQ(shown(), "(None) Leave ");
    close();
    EXPECT_EQ(shown(), "Three Reopen Leave ");
    kept.setEntries(lines({"Leave"}));
    EXPECT_EQ(shown(), "Leave ");
}

TEST_F(KeptMenuTest, DoesWhatIsChosenAndThatClosesIt) {
    bool isOpened = false;
    kept.onOpen = [&] { isOpened = true; };
    open();
    EXPECT_TRUE(isOpened);
    kept.setEntries(lines({"Two", "Reopen", "Leave"}));
    kept.menu().actions().first()->trigger();
    EXPECT_EQ(chosen, "One;") << "that is what could be read there";
    QCoreApplication::processEvents();
    EXPECT_EQ(shown(), "Two Reopen Leave ");
}

} // namespace
} // namespace velmorquit
