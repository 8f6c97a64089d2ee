#pragma once

#include "Linux/FakeKernel.h"
#include "Linux/Loop/QtMainLoop.h"
#include "Linux/StandInDisks.h"
#include "Linux/Volumes/UDisksVolumes.h"
#include "Simulated/SimulatedPorts.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>

#include <future>
#include <map>
#include <memory>

#include <sys/sysmacros.h>

namespace velmorquit {

/// A computer with a built-in disk, sda, and a USB stick of two partitions, sdb1 and sdb2.
class UDisksVolumesTest : public testing::Test {
protected:
    UDisksVolumesTest() {
        disks.drive("Disk", {{"ConnectionBus", ""},
                             {"Removable", false},
                             {"MediaRemovable", false},
                             {"Ejectable", false},
                             {"CanPowerOff", false}});
        add("sda", {8, 0}, "Disk", {{"HintSystem", true}});
        add("sda/sda1", {8, 1}, "Disk", {{"HintSystem", true}});
        disks.drive("Stick", {{"ConnectionBus", "usb"},
                              {"Removable", true},
                              {"MediaRemovable", true},
                              {"Ejectable", true},
                              {"CanPowerOff", true},
                              {"SiblingId", "port 1"}});
        add("sdb", {8, 16}, "Stick");
        add("sdb/sdb1", {8, 17}, "Stick");
        add("sdb/sdb2", {8, 18}, "Stick");
        disks.onUnmounted = [this](const QByteArray& path) { kernel.unmount(path.toStdString()); };
        kernel.mount("8:1", "/", "ext4 /dev/sda1 rw");
        disks.mount("sda1", {"/"});
    }

    struct Number {
        unsigned major, minor;
    };
    /// In the kernel and with UDisks2, like all that follows; `place` is as in the kernel's.
    void add(const std::string& place, Number number, const QString& drive,
             const QVariantMap& properties = {}, const std::string& image = {}) {
        const std::string text = std::to_string(number.major) + ':' + std::to_string(number.minor);
        kernel.device(place, text, {}, image);
        const auto name = QString::fromStdString(place).section('/', -1);
        numbers_[name] = text;
        disks.block(name, makedev(number.major, number.minor), drive, properties);
    }
    /// The second partition is encrypted, and its content a device of its own.
    void unlock(unsigned minor = 0, bool isOfSystem = false) {
        numbers_["sdb2_open"] = "254:" + std::to_string(minor);
        kernel.device("dm-" + std::to_string(minor), numbers_["sdb2_open"], {"sdb2"});
        disks.block(
            "sdb2_open", makedev(254, minor), "",
            {{"HintSystem", isOfSystem}, {"CryptoBackingDevice", StandInDisks::linkTo("sdb2")}});
    }
    /// `number` where the file system isn't only of this device.
    void mount(const QString& block, const QByteArrayList& paths, const std::string& number = {}) {
        for (const QByteArray& path : paths)
            kernel.mount(number.empty() ? numbers_.at(block) : number, path.toStdString(),
                         "ext4 /dev/" + block.toStdString() + " rw");
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
    static bool resultOf(std::future<bool> future) {
        EXPECT_TRUE(waitUntil(
            [&] { return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
        return future.get();
    }
    /// What UDisks2 was asked to do for it, and what came of that.
    std::string eject(const std::string& path) {
        disks.calls.clear();
        const bool isSafe = resultOf(beginToEject(path));
        return disks.takeCalls().join(", ").toStdString() + (isSafe ? ": safe" : ": kept");
    }

    FakeKernel kernel;
    QtMainLoop loop;
    SimulatedSystemLog log;
    PrivateBus bus;
    StandInDisks disks{bus.connect()};
    std::unique_ptr<UDisksVolumes> volumes;

private:
    std::map<QString, std::string> numbers_;
};

} // namespace velmorquit
