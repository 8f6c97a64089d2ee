#pragma once

#include <QColor>
#include <QVariantAnimation>
#include <QWidget>

#include <optional>

namespace velmorquit {

/// A thin bar that fills, or along which a light moves while the progress is unknown.
class ProgressTrack : public QWidget {
public:
    explicit ProgressTrack(const QColor& colour, QWidget* parent = nullptr);

    void setFraction(std::optional<double> fraction);
    [[nodiscard]] std::optional<double> fraction() const { return fraction_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void animateIfNeeded();

    QColor colour_;
    std::optional<double> fraction_;
    QVariantAnimation wandering_;
};

} // namespace velmorquit
