#pragma once

#include "Services/Panel/PanelTexts.h"

#include <QWidget>

namespace velmorquit {

class Badge;
class Label;
class SymbolLabel;

/// What a run would close, is doing or has done, below the round button.
class StatusLineView : public QWidget {
public:
    explicit StatusLineView(QWidget* parent = nullptr);

    void render(const PanelTexts::StatusLine& line);

private:
    SymbolLabel* check_;
    Label* text_;
    Badge* badge_;
    Label* note_;
};

} // namespace velmorquit
