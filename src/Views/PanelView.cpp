#include "Views/PanelView.h"

#include "Services/MacInfo.h"
#include "Services/Panel/PanelTexts.h"
#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/CircleActionButton.h"
#include "Theme/Drawing.h"
#include "Views/AppList.h"
#include "Views/BackupCard.h"
#include "Views/BackupFailedCard.h"
#include "Views/EndCard.h"
#include "Views/ExtrasRow.h"
#include "Views/FooterView.h"
#include "Views/HeaderView.h"
#include "Views/Layouts.h"
#include "Views/MemoryBar.h"
#include "Views/NoteCard.h"
#include "Views/PowerActionPicker.h"
#include "Views/ReopenCard.h"
#include "Views/ScheduleCard.h"
#include "Views/SchedulerCard.h"
#include "Views/StatusLineView.h"
#include "Views/StubbornAppsCard.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>

#include <utility>

namespace velmorquit {
namespace {

constexpr int blockGap = 14;
constexpr int itemGap = 10;
constexpr int buttonDiameter = 124;
constexpr Duration settlingTime = 500ms;

/// In a box of its own, with 4 points above and below.
QWidget* framed(QWidget* content, Qt::Alignment alignment) {
    constexpr int verticalPadding = 4;
    auto* box = new QWidget;
    column(*box, 0, {0, verticalPadding, 0, verticalPadding}).addWidget(content, 0, alignment);
    return box;
}

} // namespace

PanelView::PanelView(QuitController& controller, AppUpdater& updater, const Desktop& desktop,
                     std::function<Menu()> settingsMenu, QWidget* parent)
    : QWidget(parent), controller_(controller), updater_(updater), desktop_(desktop),
      header_(new HeaderView(controller, updater, std::move(settingsMenu))),
      memory_(new MemoryBar(desktop.formats)), normal_(new QWidget),
      quit_(new CircleActionButton(buttonDiameter, AppTheme::primaryPink())),
      status_(new StatusLineView), end_(new EndCard(desktop.loop, desktop.loginWindow)),
      picker_(new PowerActionPicker), list_(new AppList(controller, desktop.formats)),
      stubborn_(new StubbornAppsCard(controller)), footer_(new FooterView),
      extras_(new ExtrasRow(controller, desktop.formats)),
      schedule_(new ScheduleCard(controller, desktop.formats)),
      scheduler_(new SchedulerCard(controller, desktop.formats)), note_(new NoteCard),
      reopen_(new ReopenCard(controller, desktop.workspace)), backup_(new BackupCard(controller)),
      backupFailed_(new BackupFailedCard(controller)) {
    setObjectName(QStringLiteral("PanelView"));
    setAccessibleName(QStringLiteral("Velmor Quit"));
    setFixedWidth(width);
    makeNormalContent();
    QVBoxLayout& blocks = column(*this, blockGap, allSides(padding));
    blocks.addWidget(header_);
    blocks.addWidget(memory_);
    blocks.addWidget(normal_);
    blocks.addWidget(backup_);
    blocks.addWidget(stubborn_);
    blocks.addWidget(backupFailed_);
    blocks.addWidget(footer_);
    blocks.addStretch();
    observe();
}

void PanelView::makeNormalContent() {
    normal_->setObjectName(QStringLiteral("normalContent"));
    QVBoxLayout& items = column(*normal_, itemGap);
    quit_->setObjectName(QStringLiteral("quitAll"));
    quit_->setToolTip(toQt(localized("Chiude tutte le app non escluse")));
    connect(quit_, &QPushButton::clicked, this,
            [this] { controller_.quitAll(controller_.afterQuit); });
    items.addWidget(framed(quit_, Qt::AlignHCenter));
    items.addWidget(framed(status_, {}));
    end_->onCancel = [this] { controller_.cancelPowerAction(); };
    items.addWidget(end_);
    picker_->onChoose = [this](PowerAction action) { controller_.chooseAfterQuit(action); };
    items.addWidget(picker_);
    extras_->onToggleScheduler = [this] {
        showsScheduler_ = !showsScheduler_;
        if (showsScheduler_)
            scheduler_->reset();
        render();
    };
    items.addWidget(extras_);
    items.addWidget(schedule_);
    // Else the keyboard would go on to the list, where the same key closes an application.
    scheduler_->onScheduled = [this] {
        showsScheduler_ = false;
        render();
        schedule_->setFocus();
    };
    items.addWidget(scheduler_);
    note_->onDismiss = [this] { controller_.scheduleNote = std::nullopt; };
    items.addWidget(note_);
    items.addWidget(reopen_);
    items.addWidget(list_);
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

// Several fields change in one turn: that is one picture.
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
        renderNormalContent();
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
    // What had the keyboard may have gone or been switched off.
    if (isActiveWindow() && !window()->focusWidget())
        setFocus();
}

void PanelView::renderNormalContent() {
    const bool isBusy = velmorquit::isBusy(controller_.phase);
    const PowerAction action = controller_.afterQuit;
    quit_->setEnabled(!isBusy);
    quit_->setBusy(isBusy);
    quit_->setSymbol(toQt(std::string(PanelTexts::buttonSymbol(action))));
    quit_->setText(toQt(buttonTitle(action)));
    renderEnd();
    picker_->render(action);
    picker_->setEnabled(!isBusy);
    extras_->render(showsScheduler_);
    extras_->setEnabled(!isBusy);
    renderCards();
    list_->render();
}

// What the end of the session waits for stands in the place of what a run would close.
void PanelView::renderEnd() {
    const LoginWindow& loginWindow = desktop_.loginWindow;
    const bool isEnding = loginWindow.state->stage != EndState::Stage::none;
    end_->setVisible(isEnding);
    status_->parentWidget()->setVisible(!isEnding);
    if (isEnding)
        end_->render();
    PanelTexts::StatusLine line = PanelTexts::statusLine(controller_, desktop_.formats);
    const std::string limits = EndTexts::outlook(loginWindow.outlook(LoginRequest::shutDown));
    if (controller_.afterQuit.get() != PowerAction::none && !line.note && !limits.empty())
        line.note = limits;
    status_->render(line);
    picker_->explain(limits);
}

void PanelView::renderCards() {
    const bool isSet = controller_.schedule->has_value();
    schedule_->render();
    schedule_->setVisible(isSet);
    scheduler_->render();
    scheduler_->setVisible(!isSet && showsScheduler_);
    const std::optional<std::string>& note = controller_.scheduleNote;
    note_->setVisible(note.has_value());
    if (note)
        note_->render(*note);
    const std::vector<SavedApp> apps =
        isBusy(controller_.phase) ? std::vector<SavedApp>() : controller_.reopenable();
    reopen_->setVisible(!apps.empty());
    if (!apps.empty())
        reopen_->render(apps, controller_.notReopenable());
}

int PanelView::heightFor(int listHeight) {
    list_->setRoom(listHeight);
    // From the inside out, since a layout remembers what those within it wanted when it was asked
    // last. Children come after their parents in the list.
    const QList<QWidget*> blocks = findChildren<QWidget*>();
    for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) {
        if (QLayout* inner = (*block)->layout()) {
            inner->invalidate();
            inner->activate();
        }
    }
    layout()->invalidate();
    layout()->activate();
    // Everything is laid out: what was asked for by that itself would make it begin anew for ever.
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

// The keyboard's place shows which button the key means; where none is marked it means the round
// one. Just after the panel has opened by itself the user may still be typing elsewhere.
void PanelView::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn) {
        QWidget::keyPressEvent(event);
        return;
    }
    const bool isMeant =
        !event->isAutoRepeat() && desktop_.loop.uptime() - shownAt_ >= settlingTime;
    auto* marked = qobject_cast<QAbstractButton*>(window()->focusWidget());
    if (!isMeant)
        return;
    if (marked && marked->isEnabled() && showsFocus(*marked))
        marked->click();
    else if (quit_->isVisible() && quit_->isEnabled())
        quit_->click();
}

void PanelView::showEvent(QShowEvent*) {
    shownAt_ = desktop_.loop.uptime();
    macLine_ = MacInfo::load(desktop_.loop, desktop_.kernel,
                             [this](const std::string& line) { footer_->setMacLine(line); });
    render();
}

} // namespace velmorquit
