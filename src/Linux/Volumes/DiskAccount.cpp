#include "Linux/Volumes/DiskAccount.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>

#include <sys/sysmacros.h>

namespace velmorquit {

namespace {

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

/// None for a value of another type.
template <class T> std::optional<T> valueOf(const QVariant& value) {
    if (value.metaType() != QMetaType::fromType<T>())
        return std::nullopt;
    return value.value<T>();
}

template <class T> void take(const QVariantMap& values, const char* name, std::optional<T>& field) {
    const auto found = values.find(QLatin1String(name));
    if (found != values.end())
        field = valueOf<T>(*found);
}

void takeSize(const QVariantMap& values, std::optional<std::uint64_t>& field) {
    std::optional<qulonglong> size = field;
    take(values, "Size", size);
    // An empty slot of a card reader reports no bytes, which means that the size is unknown.
    field = size && *size > 0 ? std::optional<std::uint64_t>(*size) : std::nullopt;
}

/// "/" means no object.
void takePath(const QVariantMap& values, const char* name, QString& field) {
    const auto found = values.find(QLatin1String(name));
    if (found == values.end())
        return;
    const QString path = valueOf<QDBusObjectPath>(*found).value_or(QDBusObjectPath()).path();
    field = path == "/" ? QString() : path;
}

/// Paths are bytes that end with a NUL.
std::vector<std::string> pathsOf(const QVariant& value) {
    std::vector<std::string> paths;
    const auto list = valueOf<QDBusArgument>(value);
    if (!list || list->currentSignature() != "aay")
        return paths;
    for (const QByteArray& bytes : qdbus_cast<QByteArrayList>(*list)) {
        std::string path(bytes.constData());
        if (path.starts_with('/'))
            paths.push_back(std::move(path));
    }
    return paths;
}

void setBlock(DiskBlock& block, const QVariantMap& values) {
    std::optional<qulonglong> number;
    take(values, "DeviceNumber", number);
    if (values.contains("DeviceNumber"))
        block.device = number.value_or(0);
    takePath(values, "Drive", block.drive);
    takePath(values, "CryptoBackingDevice", block.encryptedBy);
    take(values, "IdLabel", block.label);
    takeSize(values, block.size);
    take(values, "HintIgnore", block.isIgnored);
    take(values, "HintSystem", block.isSystem);
    take(values, "IdType", block.type);
}

void setDrive(DiskDrive& drive, const QVariantMap& values) {
    take(values, "ConnectionBus", drive.bus);
    take(values, "Removable", drive.isRemovable);
    take(values, "MediaRemovable", drive.isMediaRemovable);
    take(values, "Ejectable", drive.isEjectable);
    take(values, "CanPowerOff", drive.canPowerOff);
    take(values, "SiblingId", drive.sibling);
}

} // namespace

std::optional<DiskAccount> DiskAccount::from(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != "a{oa{sa{sv}}}")
        return std::nullopt;
    DiskAccount account;
    const auto objects = qdbus_cast<Objects>(answer.arguments().at(0));
    for (auto object = objects.begin(); object != objects.end(); ++object) {
        for (auto entry = object->begin(); entry != object->end(); ++entry)
            account.setProperties(object.key().path(), entry.key(), *entry);
    }
    return account;
}

void DiskAccount::setProperties(const QString& object, const QString& interface,
                                const QVariantMap& values) {
    if (interface == UDisks::block)
        setBlock(blocks[object], values);
    else if (interface == UDisks::drive)
        setDrive(drives[object], values);
    else if (interface == UDisks::loop)
        blocks[object].isImage = true;
    else if (interface == UDisks::fileSystem && values.contains("MountPoints"))
        blocks[object].mountPoints = pathsOf(values["MountPoints"]);
}

void DiskAccount::removeInterfaces(const QString& object, const QStringList& interfaces) {
    for (const QString& interface : interfaces) {
        if (interface == UDisks::block)
            blocks.erase(object);
        else if (interface == UDisks::drive)
            drives.erase(object);
    }
    const auto block = blocks.find(object);
    if (block == blocks.end())
        return;
    if (interfaces.contains(UDisks::fileSystem))
        block->second.mountPoints.clear();
    if (interfaces.contains(UDisks::loop))
        block->second.isImage = false;
}

bool DiskAccount::noteAdded(const QDBusMessage& signal) {
    if (signal.signature() != "oa{sa{sv}}")
        return false;
    const QString object = signal.arguments().at(0).value<QDBusObjectPath>().path();
    const auto interfaces = qdbus_cast<Interfaces>(signal.arguments().at(1));
    for (auto entry = interfaces.begin(); entry != interfaces.end(); ++entry)
        setProperties(object, entry.key(), *entry);
    return true;
}

bool DiskAccount::noteRemoved(const QDBusMessage& signal) {
    if (signal.signature() != "oas")
        return false;
    removeInterfaces(signal.arguments().at(0).value<QDBusObjectPath>().path(),
                     signal.arguments().at(1).toStringList());
    return true;
}

bool DiskAccount::noteChanged(const QDBusMessage& signal) {
    // Properties that were changed without a value have to be read anew.
    if (signal.signature() != "sa{sv}as" || !signal.arguments().at(2).toStringList().isEmpty())
        return false;
    const bool isKnown = blocks.contains(signal.path()) || drives.contains(signal.path());
    if (isKnown)
        setProperties(signal.path(), signal.arguments().at(0).toString(),
                      qdbus_cast<QVariantMap>(signal.arguments().at(1)));
    return true;
}

std::vector<std::string> DiskAccount::mountPoints() const {
    std::vector<std::string> all;
    for (const auto& [object, block] : blocks)
        all.insert(all.end(), block.mountPoints.begin(), block.mountPoints.end());
    return all;
}

} // namespace velmorquit
