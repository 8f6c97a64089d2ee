#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

namespace velmorquit {

/// A symbol beside a text, or by itself.
class SymbolLabel : public QWidget {
public:
    /// In the size that fits text of `textSize`.
    SymbolLabel(const QString& name, double textSize, const QColor& colour,
                QWidget* parent = nullptr);

    void setSymbol(const QString& name, const QColor& colour);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name_;
    QColor colour_;
    int size_;
};

} // namespace velmorquit
