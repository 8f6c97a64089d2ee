#include "Views/PanelView.h"

#include "Platform/LoginWindow.h"
#include "Services/MacInfo.h"
#include "Theme/Drawing.h"
#include "Theme/Shadow.h"
#include "Views/BackupCard.h"
#include "Views/BackupFailedCard.h"
#include "Views/FooterView.h"
#include "Views/HeaderView.h"
#include "Views/Layouts.h"
#include "Views/MemoryBar.h"
#include "Views/NormalContent.h"
#include "Views/StubbornAppsCard.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>

#include <initializer_list>
#include <utility>

namespace velmorquit {
namespace {
constexpr Duration settlingTime = 500ms;
} // namespace

PanelView::PanelView(QuitController& controller, AppUpdater& updater, const Desktop& desktop,
                     std::function<Menu()> settingsMenu, QWidget* parent)
    : QWidget(parent), controller_(controller), updater_(updater), desktop_(desktop),
      header_(new HeaderView(controller, updater, std::move(settingsMenu))),
      memory_(new MemoryBar(desktop.formats)), normal_(new NormalContent(controller, desktop)),
      backup_(new BackupCard(controller)), stubborn_(new StubbornAppsCard(controller)),
      backupFailed_(new BackupFailedCard(controller)), footer_(new FooterView) {
    setObjectName(QStringLiteral("PanelView"));
    setAccessibleName(QStringLiteral("Velmor Quit"));
    setFixedWidth(width);
    normal_->onOtherParts = [this] { render(); };
    constexpr int blockGap = 14;
    QVBoxLayout& blocks = column(*this, blockGap, allSides(padding));
    const std::initializer_list<QWidget*> all{header_,   memory_,       normal_, backup_,
                                              stubborn_, backupFailed_, footer_};
    for (QWidget* block : all)
        blocks.addWidget(block);
    blocks.addStretch();
    observe();
}

void PanelView::observe() {
    const auto onChange = [this](auto&... fields) {
        (observers_.push_back(fields.subscribe([this] { renderLater(); })), ...);
    };
    onChange(controller_.apps, controller_.sight, controller_.phase, controller_.stubborn,
             controller_.stayReasons, controller_.systemMemory, controller_.excluded,
             controller_.afterQuit, controller_.backupFirst, controller_.ejectDrives,
             controller_.timeMachine, controller_.externalDrives, controller_.resultNote,
             controller_.autoContinueAt, controller_.runningAction, controller_.lastSession,
             controller_.closedForGood, controller_.schedule, controller_.awaitingConfirmation,
             controller_.confirmScheduled, controller_.scheduleNote, desktop_.loginWindow.state,
             updater_.updateAvailable);
}

// Changes of several fields in one turn need only one rendering.
void PanelView::renderLater() {
    if (!isVisible() || std::exchange(isRenderPending_, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            isRenderPending_ = false;
            render();
        },
        Qt::QueuedConnection);
}

void PanelView::render() {
    const Phase& phase = controller_.phase;
    const bool isNormal = !is<phases::BackingUp>(phase) && !is<phases::Waiting>(phase) &&
                          !is<phases::BackupFailed>(phase);
    header_->render();
    memory_->render(controller_.systemMemory);
    const auto* backingUp = std::get_if<phases::BackingUp>(&phase);
    const auto* failed = std::get_if<phases::BackupFailed>(&phase);
    if (isNormal)
        normal_->render();
    if (is<phases::Waiting>(phase))
        stubborn_->render();
    if (backingUp)
        backup_->render(backingUp->fraction);
    if (failed)
        backupFailed_->render(failed->reason);
    normal_->setVisible(isNormal);
    stubborn_->setVisible(is<phases::Waiting>(phase));
    backup_->setVisible(backingUp);
    backupFailed_->setVisible(failed);
    // The focused widget may have gone or been disabled.
    if (isActiveWindow() && !window()->focusWidget())
        setFocus();
}

int PanelView::heightFor(int listHeight) {
    normal_->setListRoom(listHeight);
    // From the inside out, since a layout caches the wishes of those inside it. Children come
    // after their parents in the list.
    const QList<QWidget*> blocks = findChildren<QWidget*>();
    for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) {
        if (QLayout* inner = (*block)->layout()) {
            inner->invalidate();
            inner->activate();
        }
    }
    layout()->invalidate();
    layout()->activate();
    // Everything is laid out now; requests made by that itself would start it again without end.
    for (QWidget* block : blocks)
        QCoreApplication::removePostedEvents(block, QEvent::LayoutRequest);
    QCoreApplication::removePostedEvents(this, QEvent::LayoutRequest);
    return layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width)
                                         : layout()->totalSizeHint().height();
}

bool PanelView::event(QEvent* event) {
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest && onResize)
        onResize();
    return isHandled;
}

void PanelView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    paintShadows(painter, *this, event->rect());
}

// The focus shows which button the key means; without a mark it means the round one. Just after the
// panel has opened unasked, the user may still be typing elsewhere.
void PanelView::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn) {
        QWidget::keyPressEvent(event);
        return;
    }
    const bool isMeant =
        !event->isAutoRepeat() && desktop_.loop.uptime() - shownAt_ >= settlingTime;
    auto* marked = qobject_cast<QAbstractButton*>(window()->focusWidget());
    QAbstractButton& quit = normal_->quitButton();
    if (!isMeant)
        return;
    if (marked && marked->isEnabled() && showsFocus(*marked))
        marked->click();
    else if (quit.isVisible() && quit.isEnabled())
        quit.click();
}

void PanelView::showEvent(QShowEvent*) {
    shownAt_ = desktop_.loop.uptime();
    macLine_ = MacInfo::load(desktop_.loop, desktop_.kernel,
                             [this](const std::string& line) { footer_->setMacLine(line); });
    render();
}

} // namespace velmorquit
