#include "Views/ReopenCard.h"

#include "Platform/Workspace.h"
#include "Services/Panel/CardTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Help.h"
#include "Theme/Label.h"
#include "Views/IconView.h"
#include "Views/Layouts.h"

#include <algorithm>

namespace velmorquit {
namespace {

constexpr std::size_t mostIcons = 4;
constexpr int iconSize = 24;
constexpr int iconStep = 12;

} // namespace

ReopenCard::ReopenCard(QuitController& controller, const Workspace& workspace, QWidget* parent)
    : GlassCard(AppTheme::cardCornerRadius, std::nullopt, parent), controller_(controller),
      workspace_(workspace), icons_(new QWidget),
      title_(new Label(AppTheme::sectionFont(), AppTheme::text())),
      names_(new Label(AppTheme::captionFont(), AppTheme::text(0.75))),
      lost_(new Label(AppTheme::captionFont(), AppTheme::text(0.75))) {
    setObjectName(QStringLiteral("ReopenCard"));
    icons_->setObjectName(QStringLiteral("reopenIcons"));
    title_->setObjectName(QStringLiteral("reopenTitle"));
    names_->setObjectName(QStringLiteral("reopenNames"));
    lost_->setObjectName(QStringLiteral("notReopenable"));
    lost_->wrap();
    QVBoxLayout& all = column(*this, 6, allSides(12));
    QHBoxLayout& line = rowIn(all, 10);
    line.addWidget(icons_);
    auto* texts = new QWidget;
    QVBoxLayout& lines = column(*texts, 0);
    lines.addWidget(title_);
    lines.addWidget(names_);
    line.addWidget(texts, 1);
    auto* reopen = new PrimaryButton(toQt(localized("Riapri")), AppTheme::successGreen());
    reopen->setObjectName(QStringLiteral("reopen"));
    reopen->setToolTip(toQt(localized("Riapre le app chiuse con l'ultimo «Chiudi tutto»")));
    connect(reopen, &QPushButton::clicked, this, [this] { controller_.reopenLastSession(); });
    line.addWidget(reopen);
    constexpr int reach = 4;
    auto* forget = new SymbolButton(QStringLiteral("xmark"), 10, AppTheme::text(0.7), reach,
                                    toQt(localized("Non riaprirle")));
    forget->setObjectName(QStringLiteral("forget"));
    connect(forget, &QPushButton::clicked, this, [this] { controller_.forgetLastSession(); });
    line.addWidget(forget);
    all.addWidget(lost_);
}

void ReopenCard::render(const std::vector<SavedApp>& apps, const std::vector<std::string>& lost) {
    lost_->setVisible(!lost.empty());
    lost_->setText(toQt(CardTexts::notReopenable(lost)));
    if (shown_ == apps)
        return;
    shown_ = apps;
    qDeleteAll(icons_->findChildren<IconView*>());
    const std::size_t count = std::min(apps.size(), mostIcons);
    // The last one created lies on top, which should be the first icon.
    for (std::size_t at = count; at-- > 0;) {
        auto* icon = new IconView(workspace_.icon(apps[at].path), iconSize, icons_);
        icon->setEdge(IconView::Edge::shaded);
        icon->move(static_cast<int>(at) * iconStep, 0);
        icon->show();
    }
    icons_->setFixedSize(iconSize + iconStep * (std::max(1, static_cast<int>(count)) - 1),
                         iconSize);
    title_->setText(toQt(CardTexts::reopenTitle(apps.size())));
    names_->setText(toQt(CardTexts::names(apps)));
    setHelp(*names_, names_->text());
}

} // namespace velmorquit
