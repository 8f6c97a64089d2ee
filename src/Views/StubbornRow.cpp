#include "Views/StubbornRow.h"

#include "Services/Panel/PanelTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Help.h"
#include "Theme/Label.h"
#include "Views/IconView.h"
#include "Views/Layouts.h"

#include <utility>

namespace velmorquit {
namespace {

constexpr int iconSize = 22;
constexpr int gap = 8;

} // namespace

StubbornRow::StubbornRow(QuitController& controller, OpenApp app, QWidget* parent)
    : QWidget(parent), controller_(controller), app_(std::move(app)), more_(new QWidget),
      why_(new Label(AppTheme::captionFont(), AppTheme::text(0.8))),
      again_(new TextButton(toQt(localized("Chiedi di nuovo")))) {
    setObjectName(QStringLiteral("stubborn"));
    QVBoxLayout& lines = column(*this, 3);
    QHBoxLayout& line = rowIn(lines, gap);
    line.addWidget(new IconView(app_.icon, iconSize));
    auto* name = new Label(AppTheme::bodyFont(), AppTheme::text());
    name->setText(toQt(app_.name));
    line.addWidget(name, 1);
    auto* show = new PrimaryButton(toQt(localized("Mostra")));
    show->setObjectName(QStringLiteral("show"));
    show->setAccessibleName(toQt(localized("Mostra %@", app_.name)));
    connect(show, &QPushButton::clicked, this, [this] { app_.app->activate(); });
    auto* force = new PrimaryButton(toQt(localized("Forza")), AppTheme::dangerRed());
    force->setObjectName(QStringLiteral("force"));
    setHelp(*force, toQt(PanelTexts::forceHelp(app_)));
    force->setAccessibleName(toQt(localized("Forza la chiusura di %@", app_.name)));
    connect(force, &QPushButton::clicked, this, [this] { app_.app->forceTerminate(); });
    line.addWidget(show);
    line.addWidget(force);
    show_ = show;
    force_ = force;

    QVBoxLayout& more = column(*more_, 1, {iconSize + gap, 0, 0, 0});
    why_->setObjectName(QStringLiteral("why"));
    why_->wrap();
    again_->setObjectName(QStringLiteral("askAgain"));
    again_->setAccessibleName(toQt(localized("Chiedi di nuovo a %@ di chiudersi", app_.name)));
    connect(again_, &QPushButton::clicked, this, [this] { askAgain(); });
    more.addWidget(why_);
    more.addWidget(again_);
    lines.addWidget(more_);
    render(std::nullopt);
}

void StubbornRow::render(std::optional<StayReason> reason) {
    why_->setText(reason ? toQt(PanelTexts::stayHelp(*reason)) : QString());
    again_->setVisible(reason == StayReason::unknown);
    more_->setVisible(reason.has_value());
}

std::vector<QWidget*> StubbornRow::buttons() const { return {show_, force_, again_}; }

void StubbornRow::askAgain() {
    if (const auto obstacle = controller_.askAgain(app_))
        render(*obstacle);
}

} // namespace velmorquit
