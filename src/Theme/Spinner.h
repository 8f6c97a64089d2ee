#pragma once

#include <QVariantAnimation>
#include <QWidget>

namespace velmorquit {

/// A ring with an arc that turns once a second while it is on the screen.
class Spinner : public QWidget {
public:
    explicit Spinner(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QVariantAnimation animation_;
};

} // namespace velmorquit
