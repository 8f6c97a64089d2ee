#include "Views/NormalContent.h"

#include "Platform/LoginWindow.h"
#include "Services/Panel/PanelTexts.h"
#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/CircleActionButton.h"
#include "Views/AppList.h"
#include "Views/EndCard.h"
#include "Views/ExtrasRow.h"
#include "Views/Layouts.h"
#include "Views/NoteCard.h"
#include "Views/PowerActionPicker.h"
#include "Views/ReopenCard.h"
#include "Views/ScheduleCard.h"
#include "Views/SchedulerCard.h"
#include "Views/StatusLineView.h"

namespace velmorquit {
namespace {

constexpr int itemGap = 10;
constexpr int buttonDiameter = 124;

/// In a box of its own, with 4 points above and below.
QWidget* framed(QWidget* content, Qt::Alignment alignment) {
    constexpr int verticalPadding = 4;
    auto* box = new QWidget;
    column(*box, 0, {0, verticalPadding, 0, verticalPadding}).addWidget(content, 0, alignment);
    return box;
}

} // namespace

NormalContent::NormalContent(QuitController& controller, const Desktop& desktop, QWidget* parent)
    : QWidget(parent), controller_(controller), desktop_(desktop),
      quit_(new CircleActionButton(buttonDiameter, AppTheme::primaryPink())),
      status_(new StatusLineView), end_(new EndCard(desktop.loop, desktop.loginWindow)),
      picker_(new PowerActionPicker), extras_(new ExtrasRow(controller, desktop.formats)),
      schedule_(new ScheduleCard(controller, desktop.formats)),
      scheduler_(new SchedulerCard(controller, desktop.formats)), note_(new NoteCard),
      reopen_(new ReopenCard(controller, desktop.workspace)),
      list_(new AppList(controller, desktop.formats)) {
    setObjectName(QStringLiteral("normalContent"));
    QVBoxLayout& items = column(*this, itemGap);
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
        if (!showsScheduler_)
            scheduler_->reset();
        showScheduler(!showsScheduler_);
    };
    items.addWidget(extras_);
    items.addWidget(schedule_);
    // Otherwise the keyboard focus would go to the list, where the same key closes an application.
    scheduler_->onScheduled = [this] {
        showScheduler(false);
        schedule_->setFocus();
    };
    items.addWidget(scheduler_);
    note_->onDismiss = [this] { controller_.dismissScheduleNote(); };
    items.addWidget(note_);
    items.addWidget(reopen_);
    items.addWidget(list_);
}

void NormalContent::setListRoom(int height) { list_->setRoom(height); }

QAbstractButton& NormalContent::quitButton() const { return *quit_; }

void NormalContent::showScheduler(bool isShown) {
    showsScheduler_ = isShown;
    if (onOtherParts)
        onOtherParts();
}

void NormalContent::render() {
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

// What the end of the session is waiting for takes the place of what a run would close.
void NormalContent::renderEnd() {
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

void NormalContent::renderCards() {
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

} // namespace velmorquit
