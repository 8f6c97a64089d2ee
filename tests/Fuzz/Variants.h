#pragma once

#include "Fuzz/Fuzz.h"

#include <QDBusObjectPath>
#include <QVariantMap>

namespace velmorquit::fuzz {

/// A word that the names in `known` are among.
inline QString nameFrom(Input& input, const QStringList& known) {
    const std::uint8_t which = input.byte();
    return which < known.size() ? known[which] : QString::fromStdString(input.text());
}

/// The root in place of a path that is not known.
inline QString pathFrom(Input& input, const QStringList& known) {
    const std::uint8_t which = input.byte();
    return which < known.size() && known[which].startsWith('/') ? known[which] : QString('/');
}

/// A value as it may come over the bus, of one of the types that there are.
inline QVariant variantFrom(Input& input, const QStringList& texts) {
    switch (input.byte() % 9) {
    case 0:
        return input.byte() % 2 == 1;
    case 1:
        return static_cast<int>(input.number());
    case 2:
        return static_cast<uint>(input.number());
    case 3:
        return static_cast<qlonglong>(input.number());
    case 4:
        return static_cast<qulonglong>(input.number());
    case 5:
        return static_cast<double>(input.number()) / 3;
    case 6:
        return QVariant::fromValue(QDBusObjectPath(pathFrom(input, texts)));
    case 7:
        return QByteArray::fromStdString(input.text());
    default:
        return nameFrom(input, texts);
    }
}

inline QVariantMap mapFrom(Input& input, const QStringList& names, const QStringList& texts) {
    QVariantMap values;
    for (int count = input.byte() % 12; count > 0; --count) {
        const QString name = nameFrom(input, names);
        values.insert(name, variantFrom(input, texts));
    }
    return values;
}

} // namespace velmorquit::fuzz
