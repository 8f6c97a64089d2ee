#include "Services/ControllerStory.h"
#include "Services/FindingUpdater.h"
#include "Services/MenuBar/QuickMenu.h"

namespace velmorquit {
namespace {

class QuickMenuStory : public ControllerStory {
protected:
    /// One line for each entry: what can't be chosen is in brackets.
    std::string menu() {
        std::string text;
        for (const MenuEntry& entry :
             quickMenu(*controller, desktop.loginWindow, updater, desktop.formats, {})) {
            if (entry.isSeparator()) {
                text += "--\n";
                continue;
            }
            std::string line = entry.isEnabled ? entry.title : '(' + entry.title + ')';
            if (!entry.symbol.empty())
                line += " | " + entry.symbol;
            if (entry.id.starts_with("quit."))
                line += " | " + entry.id.substr(entry.id.find('.') + 1);
            if (entry.key != 0)
                line += std::string(" | Ctrl+") + entry.key;
            text += line + '\n';
        }
        return text;
    }
    std::string firstLine() { return menu().substr(0, menu().find('\n')); }

    FindingUpdater updater{desktop.loop};
};

const std::string powerLines =
    Lines("Chiudi e spegni | power | shutDown", "Chiudi e riavvia | arrow.clockwise | restart",
          "Chiudi ed esci | rectangle.portrait.and.arrow.right | logOut");

TEST_F(QuickMenuStory, WithNothingOpenStillOffersWhatFollowsARun) {
    start();
    EXPECT_EQ(menu(), Lines("(Niente da chiudere) | xmark.circle", "--") + powerLines +
                          Lines("--", "(Controlla aggiornamenti…)", "Apri pannello…",
                                "Esci da Velmor Quit | Ctrl+Q"));
    updater.publish({.canCheck = true});
    EXPECT_NE(menu().find("\nControlla aggiornamenti…\n"), std::string::npos);
}

TEST_F(QuickMenuStory, CountsWhatARunWouldAsk) {
    for (const char* name : {"A", "B", "C"})
        desktop.open(name);
    start();
    EXPECT_EQ(firstLine(), "Chiudi 3 app | xmark.circle");
    controller->toggleExclusion(app("A"));
    controller->toggleExclusion(app("B"));
    EXPECT_EQ(firstLine(), "Chiudi 1 app | xmark.circle");
    controller->toggleExclusion(app("C"));
    EXPECT_EQ(firstLine(), "(Niente da chiudere) | xmark.circle");
}

TEST_F(QuickMenuStory, ReopeningAndTheScheduleComeEachWithALineAbove) {
    for (const char* id : {"one", "two"}) {
        desktop.files.paths.insert("/applications/" + std::string(id) + ".desktop");
        desktop.open(id).identified(id);
    }
    start();
    controller->quitAll(PowerAction::none);
    desktop.advance(20s);
    EXPECT_NE(menu().find(powerLines +
                          Lines("--", "Riapri le 2 app di prima | arrow.uturn.backward.circle",
                                "--", "(Controlla aggiornamenti…)")),
              std::string::npos)
        << menu();
    controller->quitAll(PowerAction::none);
    EXPECT_NE(menu().find("\n(Riapri le 2 app di prima) | "), std::string::npos) << menu();
    desktop.advance(20s);
    desktop.files.paths.erase("/applications/one.desktop");
    controller->scheduleQuit(
        desktop.formats.nextOccurrence({.hour = 7, .minute = 5}, desktop.loop.now()),
        PowerAction::shutDown);
    EXPECT_NE(
        menu().find(powerLines + Lines("--", "Riapri l'app di prima | arrow.uturn.backward.circle",
                                       "--", "Annulla la chiusura delle 07:05 | timer", "--",
                                       "(Controlla aggiornamenti…)")),
        std::string::npos)
        << menu();
    controller->forgetLastSession();
    EXPECT_NE(
        menu().find(powerLines + Lines("--", "Annulla la chiusura delle 07:05 | timer", "--")),
        std::string::npos)
        << menu();
}

} // namespace
} // namespace velmorquit
