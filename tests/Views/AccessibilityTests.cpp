#include "Views/PanelStory.h"

#include <QAccessible>
#include <QAccessibleInterface>

#include <set>

namespace velmorquit {
namespace {

class AccessibilityTest : public PanelStory {
protected:
    [[nodiscard]] std::string described(QWidget* widget) const {
        QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
        std::string role = "?";
        switch (face->role()) {
        case QAccessible::Button:
            role = "button";
            break;
        case QAccessible::CheckBox:
            role = "check box";
            break;
        case QAccessible::RadioButton:
            role = "radio button";
            break;
        case QAccessible::SpinBox:
            role = "field";
            break;
        default:
            break;
        }
        return role + ' ' + face->text(QAccessible::Name).toStdString();
    }

    /// What the keyboard comes to, in its order, from the panel's first control on.
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
    desktop.open("Nota", 20_MiB);
    desktop.open("Posta", 10_MiB);
    start();
    click("showScheduler");
    EXPECT_EQ(keyboardOrder(),
              Lines("button Impostazioni", "button Chiudi tutto", "radio button Solo chiudi",
                    "radio button Spegni", "radio button Riavvia", "radio button Esci utente",
                    "check box Espelli dischi", "check box Programma", "button 15 min",
                    "button 30 min", "button 1 ora", "button 2 ore", "field oppure alle",
                    "button Programma", "check box Chiedi conferma prima di chiudere",
                    "check box Nota", "check box Posta"));
}

TEST_F(AccessibilityTest, ForcingSaysWhomItForces) {
    desktop.open("Testardo").ignoresAsking();
    start();
    controller->quitAll(PowerAction::none);
    advance(7s);
    EXPECT_EQ(keyboardOrder(), Lines("button Impostazioni", "button Mostra Testardo",
                                     "button Forza la chiusura di Testardo",
                                     "button Chiedi di nuovo a Testardo di chiudersi",
                                     "button Annulla", "button Forza tutte"));
}

} // namespace
} // namespace velmorquit
