#pragma once

#include "Linux/Volumes/MountLine.h"

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace velmorquit {

/// Device numbers of block devices.
using Devices = std::set<dev_t>;

/// What lies on which block device, as the kernel says at the moment that this is made: file
/// systems on volumes, those on partitions, those on disks. It goes by device numbers; names are
/// looked at only where the kernel gives nothing else. Never looks into a file system that is
/// mounted, which might hang. For any thread.
class BlockLayers {
public:
    /// `root` is put before /proc, /sys and /dev.
    explicit BlockLayers(std::string root = {});

    /// A mount, and all devices that its file system needs, down to the disks; those of the file
    /// as well where it is an image in a file.
    struct Mount {
        std::string path;
        Devices devices;
        bool isWhole = true; ///< not only a folder of the file system
    };
    [[nodiscard]] const std::vector<Mount>& mounts() const { return mounts_; }
    [[nodiscard]] bool isMounted(std::string_view path) const;

    /// The device itself, the disk that it is a part of, and all that these are made of. What was
    /// made of a file stands for itself.
    [[nodiscard]] Devices beneath(dev_t device) const;
    /// The same for the file system on the device, which may have other devices besides.
    [[nodiscard]] Devices beneathFileSystem(dev_t device) const;
    /// The same, and where something was made of a file, what that lies on.
    [[nodiscard]] Devices beneathAll(dev_t device) const;

    /// All devices that the running system needs: for its own directories, the homes of its users
    /// and its swap space.
    [[nodiscard]] const Devices& ofSystem() const { return ofSystem_; }
    /// Where the system lies is not known: it may be on any drive.
    [[nodiscard]] bool isSystemHidden() const { return isSystemHidden_; }
    /// The system lies in a pool whose members only the members themselves tell.
    [[nodiscard]] bool isSystemInPool() const { return isSystemInPool_; }

private:
    enum class Images { asDevices, withTheirFiles };

    [[nodiscard]] std::vector<std::string> linesOf(const std::string& file) const;
    void readMounts();
    void readPools();
    void readSwaps();
    void findSystem();
    void collect(dev_t device, Images images, Devices& found) const;
    void collectFileSystem(dev_t device, Images images, Devices& found) const;
    [[nodiscard]] Devices devicesOf(const MountLine& line, std::set<const MountLine*>& seen) const;
    [[nodiscard]] Devices devicesOfFile(std::string_view path,
                                        std::set<const MountLine*>& seen) const;
    [[nodiscard]] const MountLine* lineCovering(std::string_view path) const;
    [[nodiscard]] dev_t deviceOfNode(const std::string& node) const;
    [[nodiscard]] dev_t numberIn(const std::string& directory) const;

    std::string root_;
    std::vector<MountLine> lines_;
    std::vector<Mount> mounts_;
    std::vector<Devices> pools_; ///< file systems of several devices
    Devices ofSystem_;
    bool isSystemHidden_ = false;
    bool isSystemInPool_ = false;
};

/// Whether the running system or somebody's session lives in what is mounted there, unlike a place
/// for drives that come and go.
[[nodiscard]] bool isPlaceOfSystem(std::string_view mountPoint);

} // namespace velmorquit
