#pragma once

#include "Views/PanelView.h"

#include <QWidget>

namespace velmorquit {

class ThinScrollArea;

/// The panel's background, with the panel on it.
class PanelFrame : public QWidget {
public:
    /// The panel becomes its child.
    explicit PanelFrame(PanelView* panel, QWidget* parent = nullptr);

    [[nodiscard]] PanelView& panel() const { return *panel_; }

    /// Sets the height to that of the content, up to this limit: beyond it the list shrinks first,
    /// down to three rows, and then the whole scrolls.
    void fit(int mostHeight);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PanelView* panel_;
    ThinScrollArea* area_;
};

} // namespace velmorquit
