#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

class QDBusMessage;

namespace velmorquit {

/// A block device as UDisks2 tells of it. What it doesn't say, or says in a way that makes no
/// sense, is none.
struct DiskBlock {
    dev_t device = 0;
    QString drive;       ///< path of an object; empty when it is part of none
    QString encryptedBy; ///< path of the block device that this is the content of, or empty
    std::optional<QString> label;
    std::optional<std::uint64_t> size; ///< in bytes
    std::optional<bool> isIgnored;
    std::optional<bool> isSystem; ///< built in, by UDisks2's guess
    std::optional<QString> type;  ///< of what is on it
    std::vector<std::string> mountPoints;
    bool isImage = false; ///< made of a file
};

/// A drive as UDisks2 tells of it.
struct DiskDrive {
    std::optional<QString> bus;
    std::optional<bool> isRemovable;
    std::optional<bool> isMediaRemovable;
    std::optional<bool> isEjectable;
    std::optional<bool> canPowerOff;
    std::optional<QString> sibling; ///< the same for all drives that are in one case
};

/// Where UDisks2 is found on the bus.
namespace UDisks {
inline const QString service = QStringLiteral("org.freedesktop.UDisks2");
inline const QString path = QStringLiteral("/org/freedesktop/UDisks2");
inline const QString block = QStringLiteral("org.freedesktop.UDisks2.Block");
inline const QString fileSystem = QStringLiteral("org.freedesktop.UDisks2.Filesystem");
inline const QString drive = QStringLiteral("org.freedesktop.UDisks2.Drive");
inline const QString encrypted = QStringLiteral("org.freedesktop.UDisks2.Encrypted");
inline const QString loop = QStringLiteral("org.freedesktop.UDisks2.Loop");
inline const QString objectManager = QStringLiteral("org.freedesktop.DBus.ObjectManager");
inline const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
} // namespace UDisks

/// What UDisks2 tells of block devices and drives, by the paths of their objects.
struct DiskAccount {
    std::map<QString, DiskBlock> blocks;
    std::map<QString, DiskDrive> drives;

    /// From the answer to GetManagedObjects; none when it is an error or makes no sense.
    [[nodiscard]] static std::optional<DiskAccount> from(const QDBusMessage& answer);

    void setProperties(const QString& object, const QString& interface, const QVariantMap& values);
    void removeInterfaces(const QString& object, const QStringList& interfaces);

    /// The signals of UDisks2. False when the whole account has to be asked for anew.
    [[nodiscard]] bool noteAdded(const QDBusMessage& signal);
    [[nodiscard]] bool noteRemoved(const QDBusMessage& signal);
    [[nodiscard]] bool noteChanged(const QDBusMessage& signal);

    /// Where anything is mounted, in the order of the objects.
    [[nodiscard]] std::vector<std::string> mountPoints() const;
};

} // namespace velmorquit
