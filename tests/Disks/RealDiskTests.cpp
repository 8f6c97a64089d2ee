#include "Linux/Loop/QtMainLoop.h"
#include "Linux/Volumes/UDisksVolumes.h"
#include "Simulated/SimulatedPorts.h"
#include "support/Child.h"
#include "support/Waiting.h"

#include <QElapsedTimer>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <memory>

namespace velmorquit {
namespace {

using Paths = std::vector<std::string>;
constexpr auto npos = std::string::npos;
using testing::HasSubstr;
using testing::IsEmpty;

/// Real disks that are made of files, and the real UDisks2.
class RealDiskTest : public testing::Test {
protected:
    void SetUp() override {
        const char* obstacle = std::getenv("VELMOR_NO_DISKS");
        if (!obstacle || *obstacle != '\0')
            GTEST_SKIP() << (obstacle ? obstacle : "not run through tests/support/private-disks");
        service = std::make_unique<Child>(
            std::vector<std::string>{"/usr/libexec/udisks2/udisksd", "--disable-modules"});
        EXPECT_TRUE(waitUntil([&] { return service->output().find("Acquired") != npos; }))
            << service->output();
        volumes = std::make_unique<UDisksVolumes>(loop, log, connect("ours"));
    }
    ~RealDiskTest() override {
        volumes.reset();
        QDBusConnection::disconnectFromBus("ours");
        service.reset();
        for (auto place = places.rbegin(); place != places.rend(); ++place)
            run({"umount", "-q", *place}, true);
        for (const std::string& disk : disks)
            run({"losetup", "-d", disk});
    }

    static QDBusConnection connect(const QString& name) {
        return QDBusConnection::connectToBus(qEnvironmentVariable("VELMOR_DISK_BUS"), name);
    }
    /// What it prints, without the last line's end.
    static std::string run(const std::vector<std::string>& command, bool mayFail = false) {
        Child child(command);
        waitUntil([&] { return !child.isRunning(); });
        EXPECT_TRUE(mayFail || child.status() == 0) << command.front() << ": " << child.output();
        return child.output().substr(0, child.output().find_last_not_of('\n') + 1);
    }
    static void format(const std::string& device, const std::string& label) {
        run({"mkfs.ext4", "-qF", "-L", label, device});
        run({"udevadm", "trigger", "--settle", "-c", "add", device});
    }
    std::string disk() {
        const std::string file =
            std::getenv("VELMOR_DISK_FOLDER") + ("/disk" + std::to_string(disks.size()));
        run({"truncate", "-s", "64M", file});
        disks.push_back(run({"losetup", "--find", "--show", "--partscan", file}));
        return disks.back();
    }
    std::string formattedDisk(const std::string& label) {
        const std::string device = disk();
        format(device, label);
        return device;
    }
    void mount(const std::string& device, const std::string& path) {
        std::filesystem::create_directories(path);
        run({"mount", device, path});
        places.push_back(path);
    }

    /// Of the disks of this test: those of the machine are seen as well.
    [[nodiscard]] Paths paths() const {
        Paths mine;
        for (const Volume& volume : volumes->mounted()) {
            if (std::ranges::find(places, volume.path) != places.end())
                mine.push_back(volume.path);
        }
        return mine;
    }
    bool becomes(const Paths& expected) {
        return waitUntil([&] { return paths() == expected; }, 10000);
    }
    [[nodiscard]] Volume volume(const std::string& path) const {
        for (const Volume& volume : volumes->mounted()) {
            if (volume.path == path)
                return volume;
        }
        return {};
    }
    static bool isMounted(const std::string& path) { return BlockLayers().isMounted(path); }
    bool eject(const std::string& path) const {
        auto attempt =
            std::async(std::launch::async, [&] { return volumes->unmountAndEject(path); });
        waitUntil(
            [&] { return attempt.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
        return attempt.get();
    }

    QtMainLoop loop;
    SimulatedSystemLog log;
    std::unique_ptr<Child> service;
    std::unique_ptr<UDisksVolumes> volumes;
    std::vector<std::string> disks;
    std::vector<std::string> places;
};

TEST_F(RealDiskTest, AStickComesIsTakenAwayAndMayComeAgain) {
    int told = 0;
    const Handle handle = volumes->observe([&] { ++told; });
    const std::string device = formattedDisk("CHIAVETTA");
    for (int round = 0; round < 2; ++round) {
        mount(device, "/run/media/anna/CHIAVETTA");
        ASSERT_TRUE(becomes({"/run/media/anna/CHIAVETTA"})) << service->output();
        const Volume stick = volume("/run/media/anna/CHIAVETTA");
        EXPECT_EQ(stick.name, "CHIAVETTA");
        EXPECT_EQ(stick.capacity, 64 << 20);
        EXPECT_EQ(stick.isRemovable, true);
        EXPECT_FALSE(stick.holdsSystem);
        std::ofstream(stick.path + "/file") << "not written yet";
        EXPECT_TRUE(eject(stick.path));
        EXPECT_FALSE(isMounted(stick.path));
        EXPECT_TRUE(becomes({}));
        EXPECT_TRUE(eject(stick.path)) << "it is away already";
    }
    EXPECT_GE(told, 4);
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(RealDiskTest, AllPartitionsGoAndUnlessAllCanNoneIsSaidToBeSafe) {
    const std::string device = disk();
    run({"parted", "-s", device, "mklabel", "gpt", "mkpart", "a", "1MiB", "30MiB", "mkpart", "b",
         "30MiB", "60MiB"});
    if (!waitUntil([&] { return std::filesystem::exists(device + "p2"); }, 5000))
        GTEST_SKIP() << "loop devices have no partitions here";
    format(device + "p1", "UNO");
    format(device + "p2", "DUE");
    const std::string odd = "/run/media/anna/F\xF3tos e\ttutto";
    mount(device + "p1", odd);
    mount(device + "p2", "/run/media/anna/DUE");
    ASSERT_TRUE(becomes({odd, "/run/media/anna/DUE"})) << service->output();
    {
        const std::ofstream open("/run/media/anna/DUE/file");
        EXPECT_FALSE(eject(odd));
        EXPECT_FALSE(eject(odd)) << "of the same drive, whatever became of this part";
        ASSERT_TRUE(waitUntil([&] { return log.lines.size() == 2; }));
        EXPECT_THAT(log.lines[0], HasSubstr("DeviceBusy"));
        EXPECT_TRUE(isMounted("/run/media/anna/DUE"));
    }
    EXPECT_TRUE(eject("/run/media/anna/DUE"));
    EXPECT_FALSE(isMounted(odd) || isMounted("/run/media/anna/DUE"));

    mount(device + "p1", "/run/media/anna/UNO");
    ASSERT_TRUE(becomes({"/run/media/anna/UNO"}));
    EXPECT_FALSE(volume("/run/media/anna/UNO").holdsSystem);
    mount(device + "p2", "/opt");
    EXPECT_TRUE(volume("/run/media/anna/UNO").holdsSystem);
    EXPECT_FALSE(eject("/run/media/anna/UNO"));
    EXPECT_TRUE(isMounted("/run/media/anna/UNO"));
}

TEST_F(RealDiskTest, AFolderOfItThatIsMountedElsewhereIsNotTheVolumeAndGoesToo) {
    mount(formattedDisk("CHIAVETTA"), "/run/media/CHIAVETTA");
    std::filesystem::create_directory("/run/media/CHIAVETTA/folder");
    std::filesystem::create_directories("/mnt/bound");
    run({"mount", "--bind", "/run/media/CHIAVETTA/folder", "/mnt/bound"});
    places.emplace_back("/mnt/bound");
    ASSERT_TRUE(becomes({"/run/media/CHIAVETTA"}));
    linger(200);
    EXPECT_EQ(paths(), Paths{"/run/media/CHIAVETTA"});
    EXPECT_TRUE(eject("/run/media/CHIAVETTA"));
    EXPECT_FALSE(isMounted("/run/media/CHIAVETTA") || isMounted("/mnt/bound"));
}

} // namespace
} // namespace velmorquit
