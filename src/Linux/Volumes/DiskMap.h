#pragma once

#include "Linux/Volumes/BlockLayers.h"
#include "Linux/Volumes/DiskAccount.h"
#include "Platform/Volumes.h"

#include <set>

namespace velmorquit {

/// What UDisks2 and the kernel say of the same devices, put together: which drives a volume is on,
/// and what else is on them. For any thread; both have to outlive it.
class DiskMap {
public:
    DiskMap(const DiskAccount& account, const BlockLayers& layers);

    /// The drives that a block device is on, by the paths of their objects. What is on no drive is
    /// on the lowest of its block devices, which then stands for a drive that can't be let go.
    [[nodiscard]] std::set<QString> drivesOf(const QString& block) const;

    /// All block devices that are on any of the drives, also by way of an image in a file.
    [[nodiscard]] std::set<QString> blocksOn(const std::set<QString>& drives) const;

    /// Whether the running system needs the drives of this block device; also where that can't be
    /// told.
    [[nodiscard]] bool holdsSystem(const QString& block) const;

    /// The block device that is mounted there; empty when there is none.
    [[nodiscard]] QString blockAt(const std::string& mountPoint) const;

    /// The volume of a block device that is mounted.
    [[nodiscard]] Volume volumeOf(const QString& block) const;

private:
    using Reach = Devices (BlockLayers::*)(dev_t) const;
    using Quality = std::optional<bool> (*)(const DiskDrive&);

    [[nodiscard]] std::set<QString> beneath(const QString& block, Reach reach) const;
    [[nodiscard]] std::set<QString> drivesOn(const std::set<QString>& blocks) const;
    [[nodiscard]] bool holdSystem(const std::set<QString>& drives) const;
    /// The first one at which all of the file system is seen, rather than a folder of it.
    [[nodiscard]] std::string mainMountPoint(const DiskBlock& block) const;
    /// None where it isn't known of one of them and those before it are.
    [[nodiscard]] std::optional<bool> allAre(const std::set<QString>& drives,
                                             Quality quality) const;

    const DiskAccount& account_;
    const BlockLayers& layers_;
    std::map<dev_t, QString> byDevice_;
};

} // namespace velmorquit
