#pragma once

#include <QCheckBox>

namespace velmorquit {

/// A box with a tick, and its text beside it.
class CheckBox : public QCheckBox {
public:
    explicit CheckBox(const QString& text, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override;
};

} // namespace velmorquit
