#pragma once

#include "Linux/Volumes/BlockLayers.h"
#include "Linux/Volumes/DiskAccount.h"
#include "Platform/Volumes.h"

#include <set>

namespace velmorquit {

/// Combines the knowledge of UDisks2 and the kernel: which drives a volume is on, and what else is
/// on them. For any thread; both arguments must outlive it.
class DiskMap {
public:
    DiskMap(const DiskAccount& account, const BlockLayers& layers);

    /// The drives that a block device is on, by their object paths. Without a drive, the lowest of
    /// its block devices stands for a drive that can't be released.
    [[nodiscard]] std::set<QString> drivesOf(const QString& block) const;

    /// All block devices that are on any of the drives, also inside an image in a file.
    [[nodiscard]] std::set<QString> blocksOn(const std::set<QString>& drives) const;

    /// Whether the running system needs the drives of this block device; true also if that is
    /// unknown.
    [[nodiscard]] bool holdsSystem(const QString& block) const;

    /// The block device mounted there; empty without one.
    [[nodiscard]] QString blockAt(const std::string& mountPoint) const;

    /// The volume of a mounted block device.
    [[nodiscard]] Volume volumeOf(const QString& block) const;

private:
    using Reach = Devices (BlockLayers::*)(dev_t) const;
    using Quality = std::optional<bool> (*)(const DiskDrive&);

    [[nodiscard]] std::set<QString> beneath(const QString& block, Reach reach) const;
    [[nodiscard]] std::set<QString> drivesOn(const std::set<QString>& blocks) const;
    [[nodiscard]] bool holdSystem(const std::set<QString>& drives) const;
    /// The first one that shows the whole file system, rather than a folder of it.
    [[nodiscard]] std::string mainMountPoint(const DiskBlock& block) const;
    /// None if it is unknown for one of them and true for those before it.
    [[nodiscard]] std::optional<bool> allAre(const std::set<QString>& drives,
                                             Quality quality) const;

    const DiskAccount& account_;
    const BlockLayers& layers_;
    std::map<dev_t, QString> byDevice_;
};

} // namespace velmorquit
