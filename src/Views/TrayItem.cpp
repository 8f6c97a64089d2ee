#include "Views/TrayItem.h"

#include "Services/PowerAction.h"
#include "Texts/Localized.h"

#include <QIcon>

#include <utility>

namespace velmorquit {

TrayItem::TrayItem(Actions actions) : actions_(std::move(actions)) {
    menu_.addAction(QString::fromStdString(buttonTitle(PowerAction::none)),
                    [this] { actions_.quitAll(); });
    menu_.addSeparator();
    menu_.addAction(QString::fromStdString(localized("Esci da Velmor Quit")),
                    [this] { actions_.exit(); });
    icon_.setIcon(QIcon(QStringLiteral(":/icons/org.velmorquit.VelmorQuit.svg")));
    icon_.setToolTip(QStringLiteral("Velmor Quit"));
    icon_.setContextMenu(&menu_);
    icon_.show();
}

} // namespace velmorquit
