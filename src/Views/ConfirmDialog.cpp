#include "Views/ConfirmDialog.h"

#include "Texts/Localized.h"

#include <QIcon>
#include <QPushButton>
#include <QTimer>

#include <utility>

namespace velmorquit {

void ConfirmDialog::ask(const std::string& question, const std::string& button,
                        std::function<void(bool)> answered, Manner manner) {
    finish(false);
    answered_ = std::move(answered);
    box_ = std::make_unique<QMessageBox>();
    box_->setWindowTitle(QStringLiteral("Velmor Quit"));
    const QIcon icon(QStringLiteral(":/icons/org.velmorquit.VelmorQuit.svg"));
    box_->setWindowIcon(icon);
    box_->setIconPixmap(icon.pixmap(48));
    // Text quoted in the question may look like markup.
    box_->setTextFormat(Qt::PlainText);
    box_->setText(QString::fromStdString(question));
    QPushButton* yes = box_->addButton(QString::fromStdString(button), QMessageBox::AcceptRole);
    QPushButton* no =
        box_->addButton(QString::fromStdString(localized("Annulla")), QMessageBox::RejectRole);
    // A return key meant for another window must close nothing.
    box_->setDefaultButton(no);
    box_->setEscapeButton(no);
    box_->setModal(false);
    QObject::connect(box_.get(), &QMessageBox::finished, box_.get(),
                     [this, yes] { finish(box_->clickedButton() == yes); });
    if (manner == Manner::unbidden) {
        box_->setAttribute(Qt::WA_ShowWithoutActivating);
        yes->setEnabled(false);
        QTimer::singleShot(readingTime, yes, [yes] { yes->setEnabled(true); });
    }
    box_->show();
    box_->raise();
    if (manner == Manner::wanted)
        box_->activateWindow();
}

void ConfirmDialog::finish(bool isYes) {
    if (box_)
        box_.release()->deleteLater();
    const auto answered = std::exchange(answered_, nullptr);
    if (answered)
        answered(isYes);
}

} // namespace velmorquit
