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

/// The layers of block devices, as the kernel reports them when this object is created: file
/// systems on volumes on partitions on disks. It goes by device numbers, and by names only if the
/// kernel gives nothing else. Never looks into a mounted file system, which might hang. For any
/// thread.
class BlockLayers {
public:
    /// `root` is prefixed to /proc, /sys and /dev.
    explicit BlockLayers(std::string root = {});

    /// A mount, and all devices that its file system needs, down to the disks. For an image these
    /// include the devices of its file.
    struct Mount {
        std::string path;
        Devices devices;
        bool isWhole = true; ///< false for a folder of the file system
    };
    [[nodiscard]] const std::vector<Mount>& mounts() const { return mounts_; }
    [[nodiscard]] bool isMounted(std::string_view path) const;

    /// The device itself, the disk that it is part of, and all devices that these are made of.
    /// Devices made of a file have nothing beneath them.
    [[nodiscard]] Devices beneath(dev_t device) const;
    /// The same for the file system on the device, which may have other devices besides.
    [[nodiscard]] Devices beneathFileSystem(dev_t device) const;
    /// The same, and the devices of the files that any of them are made of.
    [[nodiscard]] Devices beneathAll(dev_t device) const;

    /// All devices that the running system needs: for its own directories, its users' homes and its
    /// swap space.
    [[nodiscard]] const Devices& ofSystem() const { return ofSystem_; }
    /// It isn't known where the system is: it may be on any drive.
    [[nodiscard]] bool isSystemHidden() const { return isSystemHidden_; }
    /// The system is in a pool whose members are known only from the members themselves.
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

/// Whether the running system or a user's session depends on what is mounted there, unlike at a
/// place for drives that come and go.
[[nodiscard]] bool isPlaceOfSystem(std::string_view mountPoint);

} // namespace velmorquit
