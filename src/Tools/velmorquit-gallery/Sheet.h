#pragma once

#include <QImage>
#include <QString>

#include <vector>

namespace velmorquit {

/// Many pictures of one scale in a single picture, in rows, each with its name below it.
class Sheet {
public:
    explicit Sheet(int scale) : scale_(scale) {}

    void add(const QString& name, const QImage& picture);
    [[nodiscard]] QImage drawn() const;

private:
    struct Entry {
        QString name;
        QImage picture;
        QPoint place; ///< in points
    };

    /// Places every entry and returns the size of the whole, in points.
    QSize layOut(std::vector<Entry>& entries) const;

    int scale_;
    std::vector<Entry> entries_;
};

} // namespace velmorquit
