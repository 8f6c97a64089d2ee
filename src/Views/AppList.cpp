#include "Views/AppList.h"

#include "Services/Panel/PanelTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Label.h"
#include "Views/AppRow.h"
#include "Views/Layouts.h"
#include "Views/ThinScrollArea.h"

#include <QCursor>
#include <QEvent>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>

namespace velmorquit {
namespace {

constexpr int margin = 6;
constexpr int gap = 2;

int heightOf(int count) { return count * AppRow::rowHeight() + std::max(0, count - 1) * gap; }

} // namespace

AppList::AppList(QuitController& controller, const Formats& formats, QWidget* parent)
    : GlassCard(AppTheme::cardCornerRadius, std::nullopt, parent), controller_(controller),
      formats_(formats), empty_(new Label(AppTheme::calloutFont(), AppTheme::text(0.75))),
      area_(new ThinScrollArea), rows_(new QWidget) {
    setObjectName(QStringLiteral("AppList"));
    auto* title = new Label(AppTheme::sectionFont(), AppTheme::text());
    title->setText(toQt(localized("App aperte")));
    auto* hint = new Label(AppTheme::smallCaptionFont(), AppTheme::text(0.6));
    hint->setText(toQt(localized("clic per escludere")));
    empty_->setObjectName(QStringLiteral("emptyList"));
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setContentsMargins(12, 18, 12, 18);
    empty_->wrap();

    QVBoxLayout& lines = column(*this, 0);
    QHBoxLayout& head = rowIn(lines, gap);
    head.setContentsMargins(12, 10, 12, 6);
    head.addWidget(title);
    head.addStretch();
    head.addWidget(hint);
    lines.addWidget(empty_);
    area_->setObjectName(QStringLiteral("rows"));
    area_->setWidget(rows_);
    rows_->setAutoFillBackground(false);
    lines.addWidget(area_);
    area_->viewport()->installEventFilter(this);
    connect(area_->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { updateHover(); });
}

int AppList::leastHeight() { return heightOf(3); }

void AppList::setRoom(int height) {
    const int room = std::clamp(height, std::min(leastHeight(), mostHeight), mostHeight);
    if (std::exchange(room_, room) != room)
        layOut();
}

int AppList::contentHeight() const { return heightOf(static_cast<int>(order_.size())); }

// The list shows whether it quits, but nothing would show that it was not asked.
void AppList::quitOne(AppRow& row, const OpenApp& app) {
    constexpr int readingTime = 6000;
    if (app.app->terminate(AskedBy::user))
        return;
    const StayReason why = app.app->obstacle().value_or(StayReason::cannotBeAsked);
    QToolTip::showText(row.mapToGlobal(QPoint(0, row.height())), toQt(PanelTexts::stayHelp(why)),
                       &row, {}, readingTime);
}

AppRow& AppList::rowOf(ProcessId id) {
    AppRow*& row = rowOf_[id];
    if (!row) {
        row = new AppRow(formats_, rows_);
        row->onToggle = [this](const OpenApp& app) {
            controller_.toggleExclusion(app);
            render();
        };
        row->onQuit = [row](const OpenApp& app) { quitOne(*row, app); };
        row->show();
    }
    return *row;
}

void AppList::render() {
    const std::vector<OpenApp>& apps = controller_.apps;
    std::vector<ProcessId> order;
    for (const OpenApp& app : apps) {
        rowOf(app.id).render(app, controller_.isExcluded(app));
        order.push_back(app.id);
    }
    for (auto next = rowOf_.begin(); next != rowOf_.end();) {
        const auto row = next++;
        if (std::find(order.begin(), order.end(), row->first) != order.end())
            continue;
        // The row may be handling its own click just now.
        row->second->hide();
        row->second->deleteLater();
        rowOf_.erase(row);
    }
    if (isAimedAt())
        keepPlaces(order);
    empty_->setText(toQt(PanelTexts::emptyList(controller_.sight)));
    empty_->setVisible(apps.empty());
    area_->setVisible(!apps.empty());
    if (std::exchange(order_, order) != order || area_->height() == 0)
        layOut();
}

bool AppList::isAimedAt() const {
    return std::any_of(rowOf_.begin(), rowOf_.end(),
                       [](const auto& row) { return row.second->isHovering(); });
}

// Rows stay in place while the user aims at one: a click would hit another application.
void AppList::keepPlaces(std::vector<ProcessId>& order) const {
    std::vector<ProcessId> kept;
    for (const ProcessId id : order_) {
        if (std::find(order.begin(), order.end(), id) != order.end())
            kept.push_back(id);
    }
    for (const ProcessId id : order) {
        if (std::find(order_.begin(), order_.end(), id) == order_.end())
            kept.push_back(id);
    }
    order = std::move(kept);
}

void AppList::layOut() {
    const int shown = std::min(contentHeight(), room_);
    constexpr int width = 324 - 2 * margin;
    // The keyboard order follows the screen.
    AppRow* previous = nullptr;
    int y = 0;
    for (const ProcessId id : order_) {
        AppRow* row = rowOf_[id];
        row->setGeometry(margin, y, width, AppRow::rowHeight());
        y += AppRow::rowHeight() + gap;
        if (previous)
            row->follow(previous->lastControl());
        previous = row;
    }
    rows_->resize(width + margin, contentHeight());
    area_->setFixedHeight(shown);
    auto* lines = static_cast<QVBoxLayout*>(layout());
    lines->setContentsMargins(0, 0, 0, order_.empty() ? 0 : margin);
    updateHover();
}

// The toolkit doesn't tell rows that move under a resting pointer.
void AppList::updateHover() {
    if (!area_->viewport()->underMouse() && !rows_->underMouse() && !isAimedAt())
        return;
    const QPoint pointer = QCursor::pos();
    const QWidget* viewport = area_->viewport();
    const bool isOver = viewport->rect().contains(viewport->mapFromGlobal(pointer));
    for (const auto& [id, row] : rowOf_)
        row->setHovering(isOver && row->rect().contains(row->mapFromGlobal(pointer)));
}

bool AppList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Leave) {
        for (const auto& [id, row] : rowOf_)
            row->setHovering(false);
        QMetaObject::invokeMethod(this, [this] { render(); }, Qt::QueuedConnection);
    }
    return GlassCard::eventFilter(watched, event);
}

} // namespace velmorquit
