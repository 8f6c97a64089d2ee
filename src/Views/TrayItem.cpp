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

void TrayItem::sayThatItRuns() {
    const QString title = QString::fromStdString(localized("Velmor Quit è in esecuzione"));
    if (QSystemTrayIcon::isSystemTrayAvailable() && QSystemTrayIcon::supportsMessages()) {
        icon_.showMessage(
            title,
            QString::fromStdString(localized("Il menu della sua icona chiude tutte le app.")),
            icon_.icon());
        return;
    }
    if (!notice_) {
        notice_ = std::make_unique<QMessageBox>();
        notice_->setWindowTitle(QStringLiteral("Velmor Quit"));
        notice_->setWindowIcon(icon_.icon());
        notice_->setText(title);
        notice_->setInformativeText(QString::fromStdString(
            localized("Questo desktop non mostra la sua icona: usa velmorctl da un terminale.")));
        notice_->setModal(false);
    }
    notice_->show();
    notice_->raise();
    notice_->activateWindow();
}

} // namespace velmorquit
