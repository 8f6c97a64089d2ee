#include "Views/TrayItem.h"

#include "Services/PowerAction.h"

#include <QIcon>

#include <utility>

namespace velmorquit {

TrayItem::TrayItem(Actions actions) : actions_(std::move(actions)) {
    const std::string_view quitAll = buttonTitle(PowerAction::none);
    menu_.addAction(QString::fromUtf8(quitAll.data(), static_cast<qsizetype>(quitAll.size())),
                    [this] { actions_.quitAll(); });
    menu_.addSeparator();
    menu_.addAction(QStringLiteral("Esci da Velmor Quit"), [this] { actions_.exit(); });
    icon_.setIcon(QIcon(QStringLiteral(":/icons/org.velmorquit.VelmorQuit.svg")));
    icon_.setToolTip(QStringLiteral("Velmor Quit"));
    icon_.setContextMenu(&menu_);
    icon_.show();
}

} // namespace velmorquit
