#include "Views/PowerActionPicker.h"

#include "Services/Panel/PanelTexts.h"
#include "Theme/AppTheme.h"
#include "Theme/Buttons.h"
#include "Theme/Drawing.h"
#include "Theme/Symbols.h"
#include "Views/Layouts.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QRadioButton>

#include <cmath>

namespace velmorquit {
namespace {

constexpr int verticalPadding = 7;
constexpr int textGap = 3;

/// With larger text everywhere, it may still shrink to the same size.
double leastText() { return 0.8 / AppTheme::look().textScale; }

class Tile : public QRadioButton {
public:
    explicit Tile(PowerAction action)
        : symbol_(toQt(std::string(PanelTexts::choiceSymbol(action)))) {
        setText(toQt(label(action)));
        setToolTip(toQt(helpText(action)));
        setObjectName(toQt(std::string(rawValue(action))));
        setFont(AppTheme::systemFont(10, QFont::DemiBold));
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    }

    [[nodiscard]] QSize sizeHint() const override {
        return {0, 2 * verticalPadding + symbolSize() + textGap +
                       static_cast<int>(std::ceil(QFontMetricsF(font()).height()))};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        if (!isEnabled())
            painter.setOpacity(AppTheme::disabledOpacity);
        const QRectF area = rect();
        drawChoice(painter, area, isChecked());
        const int side = symbolSize();
        Symbols::draw(painter, symbol_,
                      {(area.width() - side) / 2, verticalPadding, double(side), double(side)},
                      AppTheme::text());
        const double width = area.width() - 2 * textGap;
        const FittedLine title = fitLine(font(), text(), width, leastText());
        painter.setFont(title.font);
        painter.setPen(AppTheme::text());
        const double top = verticalPadding + side + textGap;
        const double x = (area.width() - title.width) / 2;
        drawLine(painter, {x, top, width, area.height() - verticalPadding - top}, title.text);
        if (showsFocus(*this))
            drawFocus(painter, area, AppTheme::buttonCornerRadius);
    }

    [[nodiscard]] bool hitButton(const QPoint& position) const override {
        return rect().contains(position);
    }

private:
    [[nodiscard]] static int symbolSize() {
        return Symbols::boxSize(13 * AppTheme::look().textScale);
    }

    QString symbol_;
};

} // namespace

PowerActionPicker::PowerActionPicker(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("PowerActionPicker"));
    QHBoxLayout& tiles = row(*this, 6);
    for (const PowerAction action : allPowerActions) {
        auto* tile = new Tile(action);
        tiles.addWidget(tile, 1);
        tiles_[action] = tile;
        connect(tile, &QRadioButton::clicked, this, [this, action] {
            if (onChoose)
                onChoose(action);
        });
    }
}

void PowerActionPicker::explain(const std::string& remark) {
    for (const auto& [action, tile] : tiles_) {
        const bool isMeant = action != PowerAction::none && !remark.empty();
        tile->setToolTip(toQt(isMeant ? helpText(action) + ". " + remark : helpText(action)));
    }
}

void PowerActionPicker::render(PowerAction selection) { tiles_[selection]->setChecked(true); }

} // namespace velmorquit
