#include "Views/PanelStory.h"

#include <QAccessible>
#include <QAccessibleInterface>
#include <QMetaEnum>

#include <set>

namespace velmorquit {
namespace {

class AccessibilityTest : public PanelStory {
protected:
    [[nodiscard]] std::string described(QWidget* widget) const {
        QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
        const char* role = QMetaEnum::fromType<QAccessible::Role>().valueToKey(face->role());
        return std::string(role) + ' ' + face->text(QAccessible::Name).toStdString();
    }

    /// The keyboard's stops, in their order, from the panel's first control on.
    [[nodiscard]] std::string keyboardOrder() const {
        std::string order;
        std::set<QWidget*> met;
        const QWidget* root = &frame->panel();
        for (QWidget* next = root->nextInFocusChain(); next != root && met.insert(next).second;
             next = next->nextInFocusChain()) {
            const bool isReached = next->isVisible() && next->isEnabled() &&
                                   (next->focusPolicy() & Qt::TabFocus) &&
                                   frame->isAncestorOf(next) && !next->focusProxy();
            if (isReached)
                order += described(next) + '\n';
        }
        return order;
    }
};

TEST_F(AccessibilityTest, EveryControlHasItsRoleItsNameAndItsPlaceInTheOrder) {
    desktop.open("Testardo", 20_MiB).ignoresAsking();
    desktop.open("Posta", 10_MiB);
    start();
    click("showScheduler");
    EXPECT_EQ(keyboardOrder(),
              Lines("Button Impostazioni", "Button Chiudi tutto", "RadioButton Solo chiudi",
                    "RadioButton Spegni", "RadioButton Riavvia", "RadioButton Esci utente",
                    "CheckBox Espelli dischi", "CheckBox Programma", "Button 15 min",
                    "Button 30 min", "Button 1 ora", "Button 2 ore", "SpinBox oppure alle",
                    "Button Programma", "CheckBox Chiedi conferma prima di chiudere",
                    "CheckBox Testardo", "CheckBox Posta"));
    click("showScheduler");
    controller->quitAll(PowerAction::none);
    advance(7s);
    EXPECT_EQ(keyboardOrder(), Lines("Button Impostazioni", "Button Mostra Testardo",
                                     "Button Forza la chiusura di Testardo",
                                     "Button Chiedi di nuovo a Testardo di chiudersi",
                                     "Button Annulla", "Button Forza tutte"));
}

} // namespace
} // namespace velmorquit
