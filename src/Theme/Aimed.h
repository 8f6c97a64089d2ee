#pragma once

#include <QApplication>
#include <QMouseEvent>

#include <optional>

namespace velmorquit {

/// A button that ignores the second half of a double click that began elsewhere: the first click
/// may be what has put the button under the pointer.
template <class Button> class Aimed : public Button {
public:
    using Button::Button;

protected:
    void mousePressEvent(QMouseEvent* event) override {
        pressedAt_ = event->timestamp();
        Button::mousePressEvent(event);
    }

    void mouseDoubleClickEvent(QMouseEvent* event) override {
        const auto longest = static_cast<quint64>(QApplication::doubleClickInterval());
        if (pressedAt_ && event->timestamp() - *pressedAt_ <= longest)
            mousePressEvent(event);
        else
            event->accept();
    }

private:
    std::optional<quint64> pressedAt_; ///< milliseconds
};

} // namespace velmorquit
