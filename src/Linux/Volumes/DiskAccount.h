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

/// A block device according to UDisks2. Properties that are missing, or whose values make no sense,
/// are none.
struct DiskBlock {
    dev_t device = 0;
    QString drive;       ///< object path; empty when it is on no drive
    QString encryptedBy; ///< path of the encrypted block device with this content, or empty
    std::optional<QString> label;
    std::optional<std::uint64_t> size; ///< in bytes
    std::optional<bool> isIgnored;
    std::optional<bool> isSystem; ///< built in, by UDisks2's guess
    std::optional<QString> type;  ///< of its content
    std::vector<std::string> mountPoints;
    bool isImage = false; ///< made of a file
};

/// A drive according to UDisks2.
struct DiskDrive {
    std::optional<QString> bus;
    std::optional<bool> isRemovable;
    std::optional<bool> isMediaRemovable;
    std::optional<bool> isEjectable;
    std::optional<bool> canPowerOff;
    std::optional<QString> sibling; ///< shared by all drives in one case
};

/// UDisks2's names on the bus.
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

/// UDisks2's account of block devices and drives, by their object paths.
struct DiskAccount {
    std::map<QString, DiskBlock> blocks;
    std::map<QString, DiskDrive> drives;

    /// From the answer to GetManagedObjects; none when that is an error or invalid.
    [[nodiscard]] static std::optional<DiskAccount> from(const QDBusMessage& answer);

    void setProperties(const QString& object, const QString& interface, const QVariantMap& values);
    void removeInterfaces(const QString& object, const QStringList& interfaces);

    /// Apply signals of UDisks2. False when the whole account has to be read anew.
    [[nodiscard]] bool noteAdded(const QDBusMessage& signal);
    [[nodiscard]] bool noteRemoved(const QDBusMessage& signal);
    [[nodiscard]] bool noteChanged(const QDBusMessage& signal);

    /// All mount points, in the order of the objects.
    [[nodiscard]] std::vector<std::string> mountPoints() const;
};

} // namespace velmorquit
