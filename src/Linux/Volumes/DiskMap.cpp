#include "Linux/Volumes/DiskMap.h"

#include "Linux/Text/Utf8.h"

#include <algorithm>
#include <array>

namespace velmorquit {

namespace {

std::optional<bool> isOutside(const DiskDrive& drive) {
    const std::array<QString, 3> outside{"usb", "ieee1394", "sdio"};
    if (!drive.bus)
        return std::nullopt;
    return std::ranges::find(outside, *drive.bus) != outside.end();
}

std::optional<bool> isRemovable(const DiskDrive& drive) {
    if (drive.isRemovable.value_or(false) || drive.isMediaRemovable.value_or(false))
        return true;
    return drive.isRemovable && drive.isMediaRemovable ? std::optional(false) : std::nullopt;
}

std::optional<bool> isEjectable(const DiskDrive& drive) { return drive.isEjectable; }

std::string nameOf(const DiskBlock& block, const std::string& path) {
    if (block.label && !block.label->isEmpty())
        return block.label->toStdString();
    const std::string last = path.substr(path.rfind('/') + 1);
    return utf8(last.empty() ? path : last);
}

} // namespace

DiskMap::DiskMap(const DiskAccount& account, const BlockLayers& layers)
    : account_(account), layers_(layers) {
    for (const auto& [object, block] : account.blocks) {
        if (block.device != 0)
            byDevice_[block.device] = object;
    }
}

// The kernel knows all layers; UDisks2's knowledge counts as well, lest one be overlooked.
std::set<QString> DiskMap::beneath(const QString& block, Reach reach) const {
    std::set<QString> found;
    std::vector<QString> waiting{block};
    while (!waiting.empty()) {
        const QString next = waiting.back();
        waiting.pop_back();
        const auto entry = account_.blocks.find(next);
        if (entry == account_.blocks.end() || !found.insert(next).second)
            continue;
        waiting.push_back(entry->second.encryptedBy);
        for (const dev_t device : (layers_.*reach)(entry->second.device)) {
            const auto lower = byDevice_.find(device);
            if (lower != byDevice_.end())
                waiting.push_back(lower->second);
        }
    }
    return found;
}

std::set<QString> DiskMap::drivesOn(const std::set<QString>& blocks) const {
    std::set<QString> drives;
    for (const QString& block : blocks) {
        const QString& drive = account_.blocks.at(block).drive;
        if (!drive.isEmpty())
            drives.insert(drive);
        else if (beneath(block, &BlockLayers::beneath).size() == 1)
            drives.insert(block);
    }
    return drives;
}

std::set<QString> DiskMap::drivesOf(const QString& block) const {
    return drivesOn(beneath(block, &BlockLayers::beneathFileSystem));
}

std::set<QString> DiskMap::blocksOn(const std::set<QString>& drives) const {
    std::set<QString> blocks;
    for (const auto& [object, block] : account_.blocks) {
        const auto theirs = drivesOn(beneath(object, &BlockLayers::beneathAll));
        if (std::ranges::any_of(theirs, [&](const auto& drive) { return drives.contains(drive); }))
            blocks.insert(object);
    }
    return blocks;
}

bool DiskMap::holdSystem(const std::set<QString>& drives) const {
    if (drives.empty() || layers_.isSystemHidden())
        return true;
    for (const auto& [object, block] : account_.blocks) {
        if (!drives.contains(object) && !drives.contains(block.drive))
            continue;
        if (block.device == 0 || layers_.ofSystem().contains(block.device))
            return true;
    }
    return layers_.isSystemInPool() &&
           std::ranges::any_of(blocksOn(drives), [this](const QString& block) {
               return account_.blocks.at(block).type == "zfs_member";
           });
}

bool DiskMap::holdsSystem(const QString& block) const {
    const auto found = account_.blocks.find(block);
    if (found == account_.blocks.end())
        return true;
    const Devices own = layers_.beneathFileSystem(found->second.device);
    return holdSystem(drivesOf(block)) || std::ranges::any_of(own, [this](dev_t device) {
               return layers_.ofSystem().contains(device);
           });
}

QString DiskMap::blockAt(const std::string& mountPoint) const {
    for (const auto& [object, block] : account_.blocks) {
        if (std::ranges::find(block.mountPoints, mountPoint) != block.mountPoints.end())
            return object;
    }
    return {};
}

std::optional<bool> DiskMap::allAre(const std::set<QString>& drives, Quality quality) const {
    std::optional<bool> all;
    for (const QString& drive : drives) {
        const auto found = account_.drives.find(drive);
        const auto one = found == account_.drives.end() ? std::nullopt : quality(found->second);
        if (!one || !*one)
            return one;
        all = true;
    }
    return all;
}

std::string DiskMap::mainMountPoint(const DiskBlock& block) const {
    for (const std::string& path : block.mountPoints) {
        const bool isWhole = std::ranges::any_of(layers_.mounts(), [&](const auto& mount) {
            return mount.path == path && mount.isWhole;
        });
        if (isWhole)
            return path;
    }
    return block.mountPoints.at(0);
}

Volume DiskMap::volumeOf(const QString& object) const {
    const DiskBlock& block = account_.blocks.at(object);
    const std::set<QString> drives = drivesOf(object);
    Volume volume;
    volume.path = mainMountPoint(block);
    volume.name = nameOf(block, volume.path);
    volume.capacity = block.size;
    if (block.isIgnored)
        volume.isBrowsable = !*block.isIgnored;
    volume.isLocal = true;
    volume.isInternal = allAre(drives, isOutside).value_or(false) ? false : block.isSystem;
    volume.isRemovable = allAre(drives, isRemovable);
    volume.isEjectable = allAre(drives, isEjectable);
    volume.holdsSystem = holdsSystem(object);
    return volume;
}

} // namespace velmorquit
