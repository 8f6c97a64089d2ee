#pragma once

#include "Theme/Marks.h"

#include <QBoxLayout>
#include <QMargins>
#include <QWidget>

#include <string>

namespace velmorquit {

/// A layout of `widget`, vertical or horizontal, with that spacing in points.
inline QVBoxLayout& column(QWidget& widget, int spacing, const QMargins& margins = {}) {
    auto* layout = new QVBoxLayout(&widget);
    layout->setSpacing(spacing);
    layout->setContentsMargins(margins);
    return *layout;
}

inline QHBoxLayout& row(QWidget& widget, int spacing, const QMargins& margins = {}) {
    auto* layout = new QHBoxLayout(&widget);
    layout->setSpacing(spacing);
    layout->setContentsMargins(margins);
    return *layout;
}

/// A row inside `column`.
inline QHBoxLayout& rowIn(QVBoxLayout& column, int spacing) {
    auto* layout = new QHBoxLayout();
    layout->setSpacing(spacing);
    column.addLayout(layout);
    return *layout;
}

inline QMargins allSides(int margin) { return {margin, margin, margin, margin}; }

inline QString toQt(const std::string& text) { return QString::fromStdString(text); }

/// A warning in `column`, only as wide as its text.
inline void addWarning(QVBoxLayout& column, const std::string& text) {
    QHBoxLayout& line = rowIn(column, 0);
    line.addWidget(new WarningText(toQt(text)), 1);
    line.addStretch();
}

} // namespace velmorquit
