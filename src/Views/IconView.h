#pragma once

#include "Platform/Icon.h"

#include <QPixmap>
#include <QWidget>

#include <memory>

namespace velmorquit {

/// The icon of an application.
class IconView : public QWidget {
public:
    IconView(std::shared_ptr<const Icon> icon, int size, QWidget* parent = nullptr);
    /// The icon of this program.
    explicit IconView(int size, QWidget* parent = nullptr);

    enum class Edge {
        plain,
        shaded ///< sets it off from another one below it
    };
    void setEdge(Edge edge) { edge_ = edge; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::shared_ptr<const Icon> icon_;
    QPixmap pixmap_;
    double scale_ = 0;
    Edge edge_ = Edge::plain;
};

} // namespace velmorquit
