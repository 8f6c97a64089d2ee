#include "Views/StubbornAppsCard.h"

#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Label.h"
#include "Theme/Marks.h"
#include "Theme/SymbolLabel.h"
#include "Views/Layouts.h"
#include "Views/StubbornRow.h"

#include <utility>

namespace velmorquit {
namespace {

Label* caption(const char* key, double opacity) {
    auto* label = new Label(AppTheme::captionFont(), AppTheme::text(opacity));
    label->setText(toQt(localized(key)));
    label->wrap();
    return label;
}

} // namespace

StubbornAppsCard::StubbornAppsCard(QuitController& controller, QWidget* parent)
    : GlassCard(AppTheme::cardCornerRadius, AppTheme::warningOrange(), parent),
      controller_(controller) {
    setObjectName(QStringLiteral("StubbornAppsCard"));
    QVBoxLayout& lines = column(*this, 10, allSides(14));
    QHBoxLayout& head = rowIn(lines, 6);
    head.addWidget(new SymbolLabel(QStringLiteral("exclamationmark.triangle.fill"), 14,
                                   AppTheme::warningOrange()));
    auto* title = new Label(AppTheme::sectionFont(), AppTheme::warningOrange());
    title->setText(toQt(localized("Alcune app non si sono chiuse")));
    head.addWidget(title, 1);
    lines.addWidget(caption(textKey("Di solito stanno chiedendo se salvare un documento. Mostrale "
                                    "per rispondere, oppure forza la chiusura."),
                            0.8));
    rows_ = new QVBoxLayout();
    rows_->setSpacing(8);
    lines.addLayout(rows_);
    addWarning(lines, localized("Forzare la chiusura fa perdere le modifiche non salvate."));

    QHBoxLayout& buttons = rowIn(lines, 8);
    auto* leave = new PrimaryButton(toQt(localized("Annulla")));
    leave->setObjectName(QStringLiteral("leaveOpen"));
    leave->setToolTip(toQt(localized("Lascia aperte queste app e non spegnere/riavviare")));
    connect(leave, &QPushButton::clicked, this, [this] { controller_.leaveStubbornOpen(); });
    auto* force = new PrimaryButton(toQt(localized("Forza tutte")), AppTheme::dangerRed());
    force->setObjectName(QStringLiteral("forceAll"));
    connect(force, &QPushButton::clicked, this, [this] { controller_.forceQuitStubborn(); });
    buttons.addWidget(leave);
    buttons.addWidget(force);
    buttons.addStretch();
    leave_ = leave;
    forceAll_ = force;
}

void StubbornAppsCard::render() {
    std::vector<ProcessId> order;
    for (const OpenApp& app : controller_.stubborn.get()) {
        order.push_back(app.id);
        StubbornRow*& row = rowOf_[app.id];
        // Another application may have the process id of one from an earlier run.
        if (!row || row->app() != app.app) {
            delete row;
            row = new StubbornRow(controller_, app);
            order_.clear();
        }
        const auto& reasons = controller_.stayReasons.get();
        const auto reason = reasons.find(app.id);
        row->render(reason == reasons.end() ? std::nullopt : std::optional(reason->second));
    }
    if (std::exchange(order_, order) == order)
        return;
    for (auto next = rowOf_.begin(); next != rowOf_.end();) {
        const auto gone = next++;
        if (std::find(order.begin(), order.end(), gone->first) != order.end())
            continue;
        QWidget* widget = gone->second;
        widget->hide();
        widget->deleteLater();
        rows_->removeWidget(widget);
        rowOf_.erase(gone);
    }
    layOut();
}

// The keyboard order follows the screen.
void StubbornAppsCard::layOut() {
    QWidget* previous = nullptr;
    int at = 0;
    for (const ProcessId id : order_) {
        StubbornRow* row = rowOf_[id];
        rows_->insertWidget(at++, row);
        for (QWidget* button : row->buttons()) {
            if (previous)
                setTabOrder(previous, button);
            previous = button;
        }
    }
    if (previous)
        setTabOrder(previous, leave_);
    setTabOrder(leave_, forceAll_);
}

} // namespace velmorquit
