#include "Services/AppUpdater.h"
#include "Services/ControllerStory.h"
#include "Services/MenuBar/MenuBarItem.h"
#include "Services/Settings.h"

#include <algorithm>

namespace velmorquit {
namespace {

using Button = StatusItem::Click::Button;

const std::string power =
    " | Chiudi e spegni#quit.shutDown<power> Chiudi e riavvia#quit.restart<arrow.clockwise> "
    "Chiudi ed esci#quit.logOut<rectangle.portrait.and.arrow.right> |";
const std::string end = " (Controlla aggiornamenti…)#checkForUpdates Apri pannello…#openPanel Esci "
                        "da Velmor Quit#exit Ctrl+Q";

/// The lines with their ids, symbols and keys, those in brackets that can't be chosen; what is the
/// same in every menu is left out.
std::string shown(const Menu& menu) {
    std::string text;
    for (const MenuEntry& entry : menu) {
        text += entry.isSeparator() ? " |"
                : entry.isEnabled   ? ' ' + entry.title
                                    : " (" + entry.title + ')';
        text += (entry.id.empty() ? "" : '#' + entry.id) +
                (entry.symbol.empty() ? "" : '<' + entry.symbol + '>') +
                (entry.key == 0 ? "" : std::string(" Ctrl+") + entry.key);
    }
    if (const auto found = text.find(power); found != std::string::npos)
        text.replace(found, power.size(), " …");
    return text.ends_with(end) ? text.substr(0, text.size() - end.size()) : text;
}

/// Writes into the desktop's log what it is asked to show.
class LoggedIcon final : public StatusItem {
public:
    explicit LoggedIcon(SimulatedDesktop& desktop) : desktop_(desktop) {}

    [[nodiscard]] std::optional<ScreenRect> frame() const override { return place; }
    void popUp(const Menu& menu) override {
        open = menu;
        desktop_.write("menu" + shown(menu));
    }
    void keepMenu(const Menu& menu) override { desktop_.write("keeps" + shown(menu)); }

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

    AppUpdater updater{desktop.loop};
    Settings settings{desktop.loop, desktop.preferences};
    LoggedIcon icon{desktop};
    LoggedPopover popover{desktop};
    std::unique_ptr<MenuBarItem> item;
};

TEST_F(MenuBarStory, APlainClickOpensThePanelAndTheNextOneClosesIt) {
    begin();
    click();
    item->showPopover();
    EXPECT_EQ(after(0s), Lines("0.00 countdown hides", "0.00 panel opens at 900")) << "once";
    click();
    EXPECT_EQ(after(0s), Lines("0.00 panel closes", "0.00 countdown may come back"));
    icon.place.reset();
    click();
    EXPECT_EQ(after(0s), Lines("0.00 countdown hides", "0.00 panel opens anywhere"));
}

TEST_F(MenuBarStory, TheClickThatWasToOpenAPanelWhichOpensByItselfDoesNotCloseIt) {
    begin();
    item->onPopoverOpen = [this] { desktop.write("open"); };
    item->showPopoverAside();
    EXPECT_EQ(after(0s), Lines("0.00 countdown hides", "0.00 panel opens aside", "0.00 open"));
    click();
    EXPECT_EQ(after(0s), Lines("0.00 countdown hides", "0.00 panel opens at 900", "0.00 open"))
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
    EXPECT_EQ(after(1s), "");
    in(10ms, [this] { popover.closedByPress = false; });
    click();
    EXPECT_EQ(after(1s), Lines("0.05 countdown hides", "0.05 panel opens at 900"))
        << "it was another press, as the panel hears a little later";
}

TEST_F(MenuBarStory, FiguresAreFreshWhenThePanelOpensAndForAsLongAsItIsOpen) {
    SimulatedApplication& note = desktop.open("Note", 1);
    begin();
    popover.onOpened = [this] { desktop.write(std::to_string(app("Note").memory)); };
    note.setMemory(2);
    desktop.advance(1min);
    EXPECT_EQ(app("Note").memory, 1U);
    click();
    EXPECT_THAT(after(0s), testing::EndsWith(" 2\n"));
    note.setMemory(3);
    desktop.advance(QuitController::refreshInterval);
    EXPECT_EQ(app("Note").memory, 3U);
    popover.close();
    note.setMemory(4);
    desktop.advance(1min);
    EXPECT_EQ(app("Note").memory, 3U);
}

TEST_F(MenuBarStory, TheOtherButtonOrControlOpensTheMenuAndNothingElse) {
    desktop.open("A");
    begin();
    const std::string menu = "0.00 menu Chiudi 1 app#quit<xmark.circle> …";
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
    EXPECT_THAT(after(20s), testing::HasSubstr(" restart\n"));
    popover.close();
    click(Button::right);
    desktop.startLog();
    icon.choose("reopen");
    icon.choose("exit");
    EXPECT_EQ(desktop.log(), Lines("0.00 open /applications/a.desktop", "0.00 ends"));
}

TEST_F(MenuBarStory, TheMenuFollowsWhatItShowsAndIsKeptOnlyWhenItChanges) {
    begin();
    for (const char* id : {"a", "b"}) {
        desktop.files.paths.insert("/applications/" + std::string(id) + ".desktop");
        desktop.open(id).identified(id);
    }
    EXPECT_EQ(after(0s), Lines("0.00 keeps Chiudi 2 app#quit<xmark.circle> …")) << "once for both";
    controller->refresh();
    EXPECT_EQ(after(0s), "") << "that isn't in the menu";
    controller->toggleExclusion(app("a"));
    EXPECT_EQ(after(0s), Lines("0.00 keeps Chiudi 1 app#quit<xmark.circle> …"));
    controller->toggleExclusion(app("a"));
    after(0s);
    controller->scheduleQuit(
        desktop.formats.nextOccurrence({.hour = 7, .minute = 5}, desktop.loop.now()),
        PowerAction::shutDown);
    EXPECT_EQ(after(0s), Lines("0.00 keeps Chiudi 2 app#quit<xmark.circle> … Annulla la chiusura "
                               "delle 07:05#cancelSchedule<timer> |"));
    controller->quitAll(PowerAction::none);
    EXPECT_THAT(after(20s),
                testing::HasSubstr(
                    "0.25 keeps (Niente da chiudere)#quit<xmark.circle> … Riapri le 2 app di prima"
                    "#reopen<arrow.uturn.backward.circle> | Annulla la chiusura delle 07:05"
                    "#cancelSchedule<timer> |\n"));
    desktop.files.paths.erase("/applications/b.desktop");
    controller->cancelSchedule();
    EXPECT_EQ(after(0s), Lines("0.00 keeps (Niente da chiudere)#quit<xmark.circle> … Riapri l'app "
                               "di prima#reopen<arrow.uturn.backward.circle> |"));
    desktop.open("B").ignoresAsking();
    controller->quitAll(PowerAction::none);
    EXPECT_EQ(after(1s), Lines("0.00 quit B",
                               "0.00 keeps Chiudi 1 app#quit<xmark.circle> … (Riapri l'app di "
                               "prima)#reopen<arrow.uturn.backward.circle> |",
                               "0.00 quitting 1"))
        << "nothing is reopened during a run";
    controller->leaveStubbornOpen();
    controller->forgetLastSession();
    EXPECT_EQ(after(10s),
              Lines("0.00 done 0 0", "0.00 keeps Chiudi 1 app#quit<xmark.circle> …", "8.00 idle"));
}

TEST_F(MenuBarStory, ThePanelOpensByItselfTheFirstTimeOnly) {
    begin();
    item->welcome();
    EXPECT_TRUE(settings.didShowWelcome.get()) << "before it opens";
    EXPECT_EQ(after(1s), Lines("0.30 countdown hides", "0.30 panel opens at 900"));
    popover.close();
    desktop.startLog();
    item->welcome();
    EXPECT_EQ(after(1s), "");
}

} // namespace
} // namespace velmorquit
