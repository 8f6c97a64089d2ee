#pragma once

#include <QTimeEdit>

#include <functional>

namespace velmorquit {

/// A field for an hour and a minute, in the order and with the separators of its locale. The user
/// can type in it, and step through it with the arrow keys, the wheel and its two arrows.
class TimeField : public QTimeEdit {
public:
    explicit TimeField(QWidget* parent = nullptr);

    /// Called when the return key is pressed in it.
    std::function<void()> onReturn;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    [[nodiscard]] QRectF arrows() const;
};

} // namespace velmorquit
