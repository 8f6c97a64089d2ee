#include "Views/AppRow.h"

#include "Platform/Formats.h"
#include "Services/Panel/PanelTexts.h"
#include "Texts/Localized.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Drawing.h"
#include "Theme/Help.h"
#include "Theme/Symbols.h"
#include "Views/AppIcons.h"
#include "Views/Layouts.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace velmorquit {
namespace {

constexpr double horizontalPadding = 8;
constexpr double verticalPadding = 5;
constexpr double gap = 9;
constexpr int iconSide = 22;
constexpr double cornerRadius = 8;
constexpr double badgePadding = 5;
constexpr double excludedOpacity = 0.6;

double checkSize() { return Symbols::boxSize(15 * AppTheme::look().textScale); }

QFont figureFont() { return AppTheme::systemFont(11, QFont::Medium); }

QFont badgeFont() { return AppTheme::systemFont(9, QFont::Bold); }

} // namespace

AppRow::AppRow(const Formats& formats, QWidget* parent) : Aimed(parent), formats_(formats) {
    setFont(AppTheme::bodyFont());
    // The state is read back from the engine: a click alone changes nothing here.
    connect(this, &QCheckBox::clicked, this, [this] {
        setChecked(!isExcluded_);
        if (onToggle)
            onToggle(*app_);
    });
}

void AppRow::render(const OpenApp& app, bool isExcluded) {
    const bool isSame = app_ && *app_ == app && app_->app == app.app && isExcluded_ == isExcluded;
    if (!app_ || app_->icon != app.icon)
        icon_ = QPixmap();
    app_ = std::make_unique<OpenApp>(app);
    isExcluded_ = isExcluded;
    if (isSame)
        return;
    // An ampersand would make the next letter a shortcut for the whole panel.
    setText(toQt(app.name).replace(QLatin1Char('&'), QLatin1String("&&")));
    setChecked(!isExcluded);
    setHelp(*this, toQt(PanelTexts::rowHelp(app, isExcluded)));
    if (quitButton_) {
        const QString help = toQt(PanelTexts::rowQuitHelp(app));
        setHelp(*quitButton_, help);
        quitButton_->setAccessibleName(help);
    }
    update();
}

void AppRow::follow(QWidget* previous) {
    setTabOrder(previous, this);
    if (quitButton_)
        setTabOrder(this, quitButton_);
}

void AppRow::setHovering(bool isHovering) {
    if (isHovering_ == isHovering)
        return;
    isHovering_ = isHovering;
    updateQuitButton();
}

bool AppRow::offersQuit() const {
    return isHovering_ || showsFocus(*this) || (quitButton_ && quitButton_->hasFocus());
}

void AppRow::updateQuitButton() {
    const bool isOffered = offersQuit();
    if (isOffered && !quitButton_)
        makeQuitButton();
    if (quitButton_)
        quitButton_->setVisible(isOffered);
    update();
}

void AppRow::makeQuitButton() {
    constexpr int margin = 2;
    auto* button = new SymbolButton(QStringLiteral("xmark.circle.fill"), 14, AppTheme::text(0.85),
                                    margin, toQt(PanelTexts::rowQuitHelp(*app_)), this);
    button->setObjectName(QStringLiteral("quitOne"));
    button->resize(button->sizeHint());
    button->installEventFilter(this);
    connect(button, &QPushButton::clicked, this, [this] {
        if (onQuit)
            onQuit(*app_);
    });
    quitButton_ = button;
    setTabOrder(this, button);
    placeQuitButton();
}

void AppRow::placeQuitButton() {
    if (!quitButton_)
        return;
    constexpr int margin = 2;
    quitButton_->move(width() - static_cast<int>(horizontalPadding) - quitButton_->width() + margin,
                      (height() - quitButton_->height()) / 2);
}

int AppRow::rowHeight() {
    const double content = std::max<double>(iconSide, QFontMetricsF(AppTheme::bodyFont()).height());
    return static_cast<int>(std::ceil(content + 2 * verticalPadding));
}

bool AppRow::hitButton(const QPoint& position) const { return rect().contains(position); }

void AppRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = rect();
    if (isExcluded_ && !AppTheme::look().isHighContrast)
        painter.setOpacity(excludedOpacity);
    if (isHovering_)
        fillRounded(painter, area, cornerRadius, AppTheme::veil(0.10));

    double x = horizontalPadding;
    const double side = checkSize();
    const QRectF check(x, (area.height() - side) / 2, side, side);
    if (isExcluded_)
        Symbols::draw(painter, QStringLiteral("circle"), check, AppTheme::text(0.45));
    else
        Symbols::draw(painter, QStringLiteral("checkmark.circle.fill"), check,
                      AppTheme::successMark());
    x += side + gap;
    const double scale = devicePixelRatioF();
    if (icon_.isNull() || iconScale_ != scale) {
        icon_ = AppIcons::pixmap(*app_->icon, iconSide, scale);
        iconScale_ = scale;
    }
    AppIcons::draw(painter, {x, 0, iconSide, area.height()}, icon_);
    x += iconSide + gap;
    paintTexts(painter, x);
    painter.setOpacity(1);
    if (showsFocus(*this))
        drawFocus(painter, area, cornerRadius);
}

void AppRow::paintTexts(QPainter& painter, double left) const {
    double right = width() - horizontalPadding;
    if (offersQuit()) {
        right -= Symbols::boxSize(14 * AppTheme::look().textScale) + gap;
    } else if (app_->memory > 0) {
        const QString figure = toQt(formats_.bytes(app_->memory));
        const double wide = textWidth(figureFont(), figure, Figures::tabular);
        painter.setFont(figureFont());
        painter.setPen(AppTheme::text(0.7));
        drawLine(painter, {right - wide, 0, wide, double(height())}, figure, Figures::tabular);
        right -= wide + gap;
    }

    const QString badge = isExcluded_ ? toQt(localized("esclusa")) : QString();
    const double badgeWidth = isExcluded_ ? textWidth(badgeFont(), badge) + 2 * badgePadding : 0;
    const double room = right - left - (isExcluded_ ? badgeWidth + gap : 0);
    const QString name = QFontMetricsF(font()).elidedText(toQt(app_->name), Qt::ElideRight, room);
    painter.setFont(font());
    painter.setPen(AppTheme::text());
    drawLine(painter, {left, 0, room, double(height())}, name);
    if (!isExcluded_)
        return;
    const double badgeHeight = QFontMetricsF(badgeFont()).height() + 2;
    const QRectF capsule(left + textWidth(font(), name) + gap, (height() - badgeHeight) / 2,
                         badgeWidth, badgeHeight);
    fillRounded(painter, capsule, badgeHeight / 2, AppTheme::veil(0.18));
    painter.setFont(badgeFont());
    painter.setPen(AppTheme::text());
    drawLine(painter, capsule.adjusted(badgePadding, 0, 0, 0), badge);
}

void AppRow::enterEvent(QEnterEvent*) { setHovering(true); }

void AppRow::leaveEvent(QEvent*) { setHovering(false); }

void AppRow::focusInEvent(QFocusEvent* event) {
    QCheckBox::focusInEvent(event);
    updateQuitButton();
}

void AppRow::focusOutEvent(QFocusEvent* event) {
    QCheckBox::focusOutEvent(event);
    updateQuitButton();
}

void AppRow::resizeEvent(QResizeEvent*) { placeQuitButton(); }

void AppRow::changeEvent(QEvent* event) {
    QCheckBox::changeEvent(event);
    if (event->type() == QEvent::EnabledChange)
        updateQuitButton();
}

bool AppRow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == quitButton_ && event->type() == QEvent::FocusOut)
        QMetaObject::invokeMethod(this, [this] { updateQuitButton(); }, Qt::QueuedConnection);
    return QCheckBox::eventFilter(watched, event);
}

} // namespace velmorquit
