#pragma once

#include "Views/PanelView.h"

#include <QWidget>

namespace velmorquit {

class ThinScrollArea;

/// The panel's ground, with the panel on it.
class PanelFrame : public QWidget {
public:
    /// The panel becomes its child.
    explicit PanelFrame(PanelView* panel, QWidget* parent = nullptr);

    [[nodiscard]] PanelView& panel() const { return *panel_; }

    /// Becomes as high as what it shows needs, but not higher than that: then the list gives way
    /// first, down to three rows, and beyond that the whole scrolls.
    void fit(int mostHeight);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PanelView* panel_;
    ThinScrollArea* area_;
};

} // namespace velmorquit
