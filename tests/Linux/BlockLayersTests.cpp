#include "Linux/Volumes/BlockLayers.h"

#include "Linux/FakeKernel.h"

#include <gmock/gmock.h>

#include <sys/sysmacros.h>

namespace velmorquit {
namespace {

using testing::UnorderedElementsAre;

constexpr auto sd = [](unsigned minor) { return makedev(8, minor); };

/// sda is built in; sdb and sdc came with a cable.
class BlockLayersTest : public testing::Test {
protected:
    BlockLayersTest() {
        for (const auto& [place, number] :
             {std::pair("sda", "8:0"), std::pair("sda/sda1", "8:1"), std::pair("sda/sda2", "8:2"),
              std::pair("sdb", "8:16"), std::pair("sdb/sdb1", "8:17"),
              std::pair("sdb/sdb2", "8:18"), std::pair("sdc", "8:32")})
            kernel.device(place, number);
    }

    [[nodiscard]] BlockLayers layers() const { return BlockLayers(kernel.root()); }
    [[nodiscard]] bool isSystemOn(dev_t device) const {
        return layers().ofSystem().contains(device);
    }

    FakeKernel kernel;
};

TEST_F(BlockLayersTest, TheSystemIsOnWhatItsPlacesLieOn) {
    kernel.mount("8:1", "/", "ext4 /dev/root rw");
    kernel.mount("8:17", "/run/media/anna/STICK", "ext4 /dev/sdb1 rw");
    EXPECT_THAT(layers().ofSystem(), UnorderedElementsAre(sd(1), sd(0)));
    EXPECT_FALSE(layers().isSystemHidden());
    kernel.mount("8:18", "/home", "ext4 /dev/sdb2 rw");
    EXPECT_TRUE(isSystemOn(sd(16))) << "all of the drive, whatever else is on it";
    EXPECT_FALSE(isSystemOn(sd(17)));
}

TEST_F(BlockLayersTest, EncryptionVolumesAndRaidAreLookedThrough) {
    kernel.device("dm-0", "254:0", {"sda2", "sdc"});
    kernel.device("dm-1", "254:1", {"dm-0"});
    kernel.mount("254:1", "/", "ext4 /dev/mapper/vg-root rw");
    EXPECT_THAT(layers().ofSystem(),
                UnorderedElementsAre(makedev(254, 1), makedev(254, 0), sd(2), sd(0), sd(32)));
    EXPECT_THAT(layers().beneath(makedev(254, 0)),
                UnorderedElementsAre(makedev(254, 0), sd(2), sd(0), sd(32)));
    kernel.device("dm-7", "254:7", {"dm-8"});
    kernel.device("dm-8", "254:8", {"dm-7"});
    EXPECT_THAT(layers().beneath(makedev(254, 7)),
                UnorderedElementsAre(makedev(254, 7), makedev(254, 8)));
}

TEST_F(BlockLayersTest, AFileSystemOfSeveralDevicesIsOnAllOfThem) {
    kernel.pool({"sda2", "sdb1"});
    kernel.mount("0:30", "/", "btrfs /dev/sda2 rw,subvol=/@");
    EXPECT_TRUE(isSystemOn(sd(16)));
    EXPECT_FALSE(layers().isSystemHidden());
    EXPECT_THAT(layers().beneath(sd(17)), UnorderedElementsAre(sd(17), sd(16)));
    EXPECT_THAT(layers().beneathFileSystem(sd(17)),
                UnorderedElementsAre(sd(17), sd(16), sd(2), sd(0)));
}

TEST_F(BlockLayersTest, SwapSpaceIsFoundByDeviceAndByFile) {
    kernel.mount("8:1", "/", "ext4 /dev/sda1 rw");
    kernel.mount("8:32", "/mnt/my\\040disk", "ext4 /dev/sdc rw");
    kernel.swaps("/dev/sdb2 partition\t1024\t0\t-2\n");
    EXPECT_TRUE(isSystemOn(sd(16)));
    EXPECT_FALSE(isSystemOn(sd(32)));
    kernel.swaps("/mnt/my\\040disk/swapfile file\t1024\t0\t-2\n");
    EXPECT_TRUE(isSystemOn(sd(32)));
    EXPECT_FALSE(isSystemOn(sd(16)));
    kernel.swaps("/gone partition 1\n\n\\\n/\n");
    EXPECT_THAT(layers().ofSystem(), UnorderedElementsAre(sd(1), sd(0)));
}

TEST_F(BlockLayersTest, ASystemThatRunsFromAStickIsOnTheStick) {
    kernel.device("loop0", "7:0", {}, "/lib/live/mount/medium/live/filesystem.squashfs");
    kernel.mount("8:17", "/lib/live/mount/medium", "vfat /dev/sdb1 ro");
    kernel.mount("7:0", "/mnt/squashfs", "squashfs /dev/loop0 ro");
    kernel.mount("0:40", "/", "overlay overlay rw,lowerdir=/mnt/squashfs,upperdir=/cow/rw");
    EXPECT_TRUE(isSystemOn(sd(16)));
    EXPECT_TRUE(isSystemOn(makedev(7, 0)));
    EXPECT_THAT(layers().beneath(makedev(7, 0)), UnorderedElementsAre(makedev(7, 0)))
        << "ejecting an image doesn't eject the drive that its file is on";
    EXPECT_THAT(layers().beneathAll(makedev(7, 0)),
                UnorderedElementsAre(makedev(7, 0), sd(17), sd(16)));
}

TEST_F(BlockLayersTest, WhereTheSystemIsMayRemainInDoubt) {
    EXPECT_TRUE(layers().isSystemHidden()) << "nothing can be read";
    kernel.mount("8:1", "/boot", "ext4 /dev/sda1 rw");
    EXPECT_TRUE(layers().isSystemHidden()) << "no root";
    kernel.mount("0:40", "/", "overlay overlay rw,lowerdir=/gone.squashfs:relative");
    EXPECT_TRUE(layers().isSystemHidden());
    kernel.unmount("/");
    kernel.mount("0:40", "/", "nfs4 server:/root rw");
    EXPECT_FALSE(layers().isSystemHidden());
    kernel.mount("0:41", "/home", "btrfs /dev/unknown rw");
    EXPECT_TRUE(layers().isSystemHidden());
    kernel.unmount("/home");
    kernel.mount("0:42", "/usr", "zfs rpool/usr rw");
    EXPECT_FALSE(layers().isSystemHidden());
    EXPECT_TRUE(layers().isSystemInPool());
}

TEST(PlacesOfSystem, AreNotThoseOfDrivesThatComeAndGo) {
    for (const char* place : {"/", "/boot/efi", "/efi", "/home", "/home/anna", "/var/lib/docker",
                              "/usr", "/lib64", "/run/live/medium", "/tmp", "/cdrom"})
        EXPECT_TRUE(isPlaceOfSystem(place)) << place;
    for (const char* place : {"/media/STICK", "/media/anna/STICK", "/run/media/anna/STICK", "/mnt",
                              "/home/anna/drive", "/backup", "/usrlocal", "/run/user/1000/x"})
        EXPECT_FALSE(isPlaceOfSystem(place)) << place;
}

} // namespace
} // namespace velmorquit
