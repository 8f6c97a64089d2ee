#include "Services/ControllerStory.h"
#include "Services/FindingUpdater.h"
#include "Services/MenuBar/MenuBarItem.h"
#include "Services/Settings.h"

#include <algorithm>

namespace velmorquit {
namespace {

using Button = StatusItem::Click::Button;

std::string titles(const Menu& menu) {
    std::string text;
    for (const MenuEntry& entry : menu)
        text += entry.isSeparator() ? " |" : ' ' + entry.title;
    return text;
}

/// Writes into the desktop's log what it is asked to show.
class LoggedIcon final : public StatusItem {
public:
    explicit LoggedIcon(SimulatedDesktop& desktop) : desktop_(desktop) {}

    [[nodiscard]] std::optional<ScreenRect> frame() const override { return place; }
    void popUp(const Menu& menu) override {
        open = menu;
        desktop_.write("menu" + titles(menu));
    }
    void keepMenu(const Menu& menu) override { desktop_.write("keeps" + titles(menu)); }

    /// Chooses that line of the menu that was opened last.
    void choose(const std::string& id) {
        const auto line = std::ranges::find(open, id, &MenuEntry::id);
        ASSERT_NE(line, open.end()) << id;
        line->action();
    }

    Menu open;

    std::optional<ScreenRect> place = ScreenRect{.x = 900, .y = 0, .width = 22, .height = 30};

private:
    SimulatedDesktop& desktop_;
};

/// The same for the panel's window.
class LoggedPopover final : public Popover {
public:
    explicit LoggedPopover(SimulatedDesktop& desktop) : desktop_(desktop) {}

    [[nodiscard]] bool isShown() const override { return shown_; }
    void show(const std::optional<ScreenRect>& anchor) override {
        shown_ = true;
        desktop_.write("panel opens " + (anchor ? "at " + std::to_string(anchor->x) : "anywhere"));
        if (onOpened)
            onOpened();
    }
    void showAside(const std::optional<ScreenRect>&) override {
        shown_ = true;
        desktop_.write("panel opens aside");
    }
    void close() override {
        if (!shown_)
            return;
        shown_ = false;
        desktop_.write("panel closes");
        onClose();
    }
    [[nodiscard]] bool wasClosedByLastPress() const override { return closedByPress; }

    std::function<void()> onOpened;
    bool closedByPress = false;

private:
    SimulatedDesktop& desktop_;
    bool shown_ = false;
};

class MenuBarStory : public ControllerStory {
protected:
    void begin() {
        start();
        item = std::make_unique<MenuBarItem>(
            MenuBarItem::Surroundings{*controller, updater, settings, icon, popover},
            desktop.ports());
        item->hideCountdown = [this] { desktop.write("countdown hides"); };
        item->onPopoverClose = [this] { desktop.write("countdown may come back"); };
        item->onExit = [this] { desktop.write("ends"); };
        desktop.loop.settle();
        desktop.startLog();
    }
    void click(Button button = Button::left, bool isControlHeld = false) {
        icon.onClick({.button = button, .isControlHeld = isControlHeld});
    }
    std::string takeLog() {
        desktop.loop.settle();
        const std::string log = desktop.log();
        desktop.startLog();
        return log;
    }
    FindingUpdater updater{desktop.loop};
    Settings settings{desktop.loop, desktop.preferences};
    LoggedIcon icon{desktop};
    LoggedPopover popover{desktop};
    std::unique_ptr<MenuBarItem> item;
};

TEST_F(MenuBarStory, APlainClickOpensThePanelAndTheNextOneClosesIt) {
    begin();
    click();
    EXPECT_EQ(takeLog(), Lines("0.00 countdown hides", "0.00 panel opens at 900"));
    item->showPopover();
    EXPECT_EQ(takeLog(), "") << "it is open";
    click();
    EXPECT_EQ(takeLog(), Lines("0.00 panel closes", "0.00 countdown may come back"));
    icon.place.reset();
    click();
    EXPECT_EQ(takeLog(), Lines("0.00 countdown hides", "0.00 panel opens anywhere"));
}

TEST_F(MenuBarStory, TheClickThatWasToOpenAPanelWhichOpensByItselfDoesNotCloseIt) {
    begin();
    item->onPopoverOpen = [this] { desktop.write("open"); };
    item->showPopoverAside();
    EXPECT_EQ(takeLog(), Lines("0.00 countdown hides", "0.00 panel opens aside", "0.00 open"));
    click();
    EXPECT_EQ(takeLog(), Lines("0.00 countdown hides", "0.00 panel opens at 900", "0.00 open"))
        << "it gets the keyboard";
    click();
    EXPECT_FALSE(popover.isShown());
    item->showPopoverAside();
    desktop.advance(2s);
    click();
    EXPECT_FALSE(popover.isShown());
}

TEST_F(MenuBarStory, TheClickWhosePressHasClosedThePanelDoesNotOpenIt) {
    begin();
    popover.closedByPress = true;
    click();
    desktop.advance(1s);
    EXPECT_EQ(takeLog(), "");
    click();
    desktop.advance(10ms);
    popover.closedByPress = false;
    desktop.advance(1s);
    EXPECT_EQ(takeLog(), Lines("0.05 countdown hides", "0.05 panel opens at 900"))
        << "it was another press, as the panel hears a little later";
}

TEST_F(MenuBarStory, FiguresAreFreshWhenThePanelOpensAndForAsLongAsItIsOpen) {
    SimulatedApplication& note = desktop.open("Note", 1);
    begin();
    const auto figure = [this] { return app("Note").memory; };
    note.setMemory(2);
    desktop.advance(1min);
    EXPECT_EQ(figure(), 1U);
    std::uint64_t shown = 0;
    popover.onOpened = [&] { shown = figure(); };
    click();
    EXPECT_EQ(shown, 2U);
    note.setMemory(3);
    desktop.advance(QuitController::refreshInterval);
    EXPECT_EQ(figure(), 3U);
    popover.close();
    note.setMemory(4);
    desktop.advance(1min);
    EXPECT_EQ(figure(), 3U);
}

TEST_F(MenuBarStory, TheOtherButtonOrControlOpensTheMenuAndNothingElse) {
    desktop.open("A");
    begin();
    const std::string menu = "0.00 menu Chiudi 1 app | Chiudi e spegni Chiudi e riavvia Chiudi ed "
                             "esci | Controlla aggiornamenti… Apri pannello… Esci da Velmor Quit";
    click(Button::right);
    click(Button::left, true);
    settings.clickIconQuitsAll.store(true);
    click(Button::right);
    click();
    EXPECT_EQ(desktop.log(), Lines(menu, menu, menu, "0.00 quit A", "0.00 countdown hides",
                                   "0.00 panel opens at 900"));
    desktop.advance(20s);
    desktop.open("B");
    popover.closedByPress = true;
    popover.close();
    desktop.startLog();
    click();
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit B", "0.00 countdown hides", "0.00 panel opens at 900"))
        << "this click is for quitting, also when its press has closed the panel";
}

TEST_F(MenuBarStory, TheMenuDoesWhatItSays) {
    desktop.files.paths.insert("/applications/a.desktop");
    desktop.open("A").identified("a");
    begin();
    controller->scheduleQuit(desktop.loop.now() + 1h, PowerAction::none);
    click(Button::right);
    icon.choose("cancelSchedule");
    EXPECT_FALSE(controller->schedule.get());
    icon.choose("openPanel");
    popover.close();
    desktop.startLog();
    icon.choose("quit.restart");
    EXPECT_EQ(desktop.log(),
              Lines("0.00 quit A", "0.00 countdown hides", "0.00 panel opens at 900"));
    desktop.advance(20s);
    EXPECT_NE(desktop.log().find(" restart\n"), std::string::npos) << desktop.log();
    popover.close();
    click(Button::right);
    desktop.startLog();
    icon.choose("reopen");
    icon.choose("exit");
    EXPECT_EQ(desktop.log(), Lines("0.00 open /applications/a.desktop", "0.00 ends"));
}

TEST_F(MenuBarStory, TheMenuThatTheDesktopKeepsFollowsWhatItShows) {
    begin();
    const auto kept = [this] {
        const std::string log = takeLog();
        const std::string power = " | Chiudi e spegni Chiudi e riavvia Chiudi ed esci |";
        const auto found = log.find(power);
        return found == std::string::npos
                   ? log
                   : log.substr(0, found) + " …" + log.substr(found + power.size());
    };
    const std::string rest = " Controlla aggiornamenti… Apri pannello… Esci da Velmor Quit\n";
    desktop.files.paths.insert("/applications/a.desktop");
    SimulatedApplication& note = desktop.open("Note").identified("a").ignoresAsking();
    EXPECT_EQ(kept(), "0.00 keeps Chiudi 1 app …" + rest);
    note.setMemory(7);
    controller->refresh();
    EXPECT_EQ(kept(), "") << "that isn't in the menu";
    controller->toggleExclusion(app("Note"));
    EXPECT_EQ(kept(), "0.00 keeps Niente da chiudere …" + rest);
    controller->toggleExclusion(app("Note"));
    controller->scheduleQuit(desktop.loop.now() + 1h, PowerAction::none);
    EXPECT_EQ(kept(), "0.00 keeps Chiudi 1 app … Annulla la chiusura delle 10:00 |" + rest);
    controller->cancelSchedule();
    controller->quitAll(PowerAction::none);
    note.end();
    desktop.advance(1s);
    const std::string log = takeLog();
    EXPECT_NE(log.find("keeps Niente da chiudere |"), std::string::npos) << log;
    EXPECT_NE(log.find("| Riapri l'app di prima |"), std::string::npos) << log;
    updater.publish({.canCheck = true});
    EXPECT_NE(kept(), "");
}

TEST_F(MenuBarStory, ThePanelOpensByItselfTheFirstTimeOnly) {
    begin();
    item->welcome();
    EXPECT_TRUE(settings.didShowWelcome.get()) << "before it opens";
    desktop.advance(1s);
    EXPECT_EQ(takeLog(), Lines("0.30 countdown hides", "0.30 panel opens at 900"));
    popover.close();
    desktop.startLog();
    item->welcome();
    desktop.advance(1s);
    EXPECT_EQ(takeLog(), "");
}

} // namespace
} // namespace velmorquit
