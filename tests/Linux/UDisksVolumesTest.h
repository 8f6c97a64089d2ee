#pragma once

#include "Linux/FakeKernel.h"
#include "Linux/Loop/QtMainLoop.h"
#include "Linux/StandInDisks.h"
#include "Linux/Volumes/UDisksVolumes.h"
#include "Simulated/SimulatedPorts.h"
#include "support/PrivateBus.h"

#include <gmock/gmock.h>

#include <future>
#include <memory>

#include <sys/sysmacros.h>

namespace velmorquit {

/// A computer with a built-in disk, sda, and a USB stick of two partitions, sdb1 and sdb2.
class UDisksVolumesTest : public testing::Test {
protected:
    UDisksVolumesTest() {
        kernel.device("sda", "8:0");
        kernel.device("sda/sda1", "8:1");
        kernel.device("sdb", "8:16");
        kernel.device("sdb/sdb1", "8:17");
        kernel.device("sdb/sdb2", "8:18");
        kernel.mount("8:1", "/", "ext4 /dev/sda1 rw");
        disks.drive("Disk", {{"ConnectionBus", ""},
                             {"Removable", false},
                             {"MediaRemovable", false},
                             {"Ejectable", false},
                             {"CanPowerOff", false}});
        disks.block("sda", makedev(8, 0), "Disk", {{"HintSystem", true}});
        disks.block("sda1", makedev(8, 1), "Disk", {{"HintSystem", true}});
        disks.drive("Stick", {{"ConnectionBus", "usb"},
                              {"Removable", true},
                              {"MediaRemovable", true},
                              {"Ejectable", true},
                              {"CanPowerOff", true},
                              {"SiblingId", "port 1"}});
        for (unsigned part : {0, 1, 2})
            disks.block(part == 0 ? "sdb" : QString("sdb%1").arg(part), makedev(8, 16 + part),
                        "Stick");
        disks.onUnmounted = [this](const QByteArray& path) { kernel.unmount(path.toStdString()); };
        mount("sda1", "8:1", {"/"});
    }

    /// In the kernel and with UDisks2.
    void mount(const QString& block, const std::string& number, const QByteArrayList& paths) {
        for (const QByteArray& path : paths) {
            if (path != "/")
                kernel.mount(number, path.toStdString(),
                             "ext4 /dev/" + block.toStdString() + " rw");
        }
        disks.mount(block, paths);
    }

    /// With UDisks2 running, and all of it known.
    void startAll() {
        disks.start();
        startVolumes();
        bool isTold = false;
        const Handle handle = volumes->observe([&] { isTold = true; });
        EXPECT_TRUE(waitUntil([&] { return isTold; }));
    }
    void startVolumes(DriveRelease::Patience patience = {}) {
        volumes =
            std::make_unique<UDisksVolumes>(loop, log, bus.connect(), kernel.root(), patience);
    }

    [[nodiscard]] std::vector<std::string> paths() const {
        std::vector<std::string> paths;
        for (const Volume& volume : volumes->mounted())
            paths.push_back(volume.path);
        return paths;
    }
    bool becomes(const std::vector<std::string>& expected) {
        return waitUntil([&] { return paths() == expected; }, 5000);
    }
    [[nodiscard]] Volume volume(const std::string& path) const {
        for (const Volume& volume : volumes->mounted()) {
            if (volume.path == path)
                return volume;
        }
        ADD_FAILURE() << path << " is not mounted";
        return {};
    }

    std::future<bool> beginToEject(const std::string& path) {
        return std::async(std::launch::async,
                          [this, path] { return volumes->unmountAndEject(path); });
    }
    static bool resultOf(std::future<bool>& future) {
        EXPECT_TRUE(waitUntil(
            [&] { return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
        return future.get();
    }
    bool eject(const std::string& path) {
        auto future = beginToEject(path);
        return resultOf(future);
    }

    FakeKernel kernel;
    QtMainLoop loop;
    SimulatedSystemLog log;
    PrivateBus bus;
    QDBusConnection theirs{bus.connect()};
    StandInDisks disks{theirs};
    std::unique_ptr<UDisksVolumes> volumes;
};

} // namespace velmorquit
