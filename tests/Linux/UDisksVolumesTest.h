#pragma once

#include "Linux/FakeKernel.h"
#include "Linux/Loop/QtMainLoop.h"
#include "Linux/Volumes/UDisksVolumes.h"
#include "Simulated/SimulatedPorts.h"
#include "support/PrivateBus.h"
#include "support/StandInService.h"
#include "support/Waiting.h"

#include <QDBusMetaType>
#include <QDBusObjectPath>

#include <gmock/gmock.h>

#include <functional>
#include <future>
#include <map>
#include <memory>

#include <sys/sysmacros.h>

namespace velmorquit {

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

/// Stands in for UDisks2 on a bus: tells of the objects that it is given, and of their changes.
/// Keeps a line for each thing that it was asked to do, and does so, unless it says something else
/// to that line or `onCall` answers first.
class StandInDisks final : public StandInService {
public:
    static constexpr const char* service = "org.freedesktop.UDisks2";

    explicit StandInDisks(const QDBusConnection& connection) : StandInService(connection) {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<Objects>();
        qDBusRegisterMetaType<QByteArrayList>();
    }

    void start() { own(service); }
    void stop() { disown(service); }

    /// The properties of one of an object's interfaces.
    QVariantMap& of(const QString& name, const QString& interface) {
        return objects[pathOf(name)][prefix + interface];
    }
    void drive(const QString& name, const QVariantMap& properties) {
        of(name, "Drive") = properties;
    }
    void block(const QString& name, dev_t device, const QString& drive,
               const QVariantMap& properties = {}) {
        QVariantMap all{
            {"DeviceNumber", qulonglong(device)},
            {"Drive", drive.isEmpty() ? QVariant::fromValue(QDBusObjectPath("/")) : linkTo(drive)},
            {"HintIgnore", false},
            {"HintSystem", false},
            {"Size", qulonglong(1 << 20)},
            {"IdLabel", ""}};
        all.insert(properties);
        of(name, "Block") = all;
    }
    /// Says so too, if it is started.
    void mount(const QString& block, const QByteArrayList& mountPoints) {
        QByteArrayList ended;
        for (const QByteArray& path : mountPoints)
            ended << path + '\0';
        of(block, "Filesystem")["MountPoints"] = QVariant::fromValue(ended);
        tellChanged(block, "Filesystem", of(block, "Filesystem"));
    }
    void tellChanged(const QString& name, const QString& interface, const QVariantMap& values,
                     const QStringList& invalidated = {}) const {
        signal(pathOf(name).path(), "org.freedesktop.DBus.Properties", "PropertiesChanged",
               {prefix + interface, values, invalidated});
    }
    void tellAdded(const QString& name) {
        signal(base, manager, "InterfacesAdded",
               {linkTo(name), QVariant::fromValue(objects[pathOf(name)])});
    }
    void remove(const QString& name) {
        const QStringList interfaces = objects.take(pathOf(name)).keys();
        signal(base, manager, "InterfacesRemoved", {linkTo(name), interfaces});
    }
    void refuse(const QDBusMessage& call, const QString& error) const {
        send(call, Refusal{prefix + "Error." + error});
    }
    /// `call` is its line.
    void refuseTo(const QString& call, const QString& error) {
        says[call] = Refusal{prefix + "Error." + error};
    }
    static QDBusObjectPath pathOf(const QString& name) {
        return QDBusObjectPath(base + '/' + name);
    }
    static QVariant linkTo(const QString& name) { return QVariant::fromValue(pathOf(name)); }

    Objects objects;
    int accounts = 0; ///< how often all objects were asked for
    /// True when it has answered, or means never to.
    std::function<bool(const QString& line, const QDBusMessage&)> onCall;
    std::function<void(const QByteArray&)> onUnmounted;

protected:
    [[nodiscard]] QString lineOf(const QDBusMessage& call) const override {
        return call.member() == "GetManagedObjects"
                   ? QString()
                   : call.member() + ' ' + call.path().section('/', -1);
    }
    void reply(const QDBusMessage& call) override {
        const QString line = lineOf(call);
        const QString name = call.path().section('/', -1);
        if (line.isEmpty()) {
            ++accounts;
            return send(call, says.value(call.member(), QVariant::fromValue(objects)));
        }
        if (says.contains(line))
            return send(call, says[line]);
        if (onCall && onCall(line, call))
            return;
        if (call.member() == "Unmount")
            unmountOne(name);
        if (call.member() == "PowerOff" || call.member() == "Delete")
            remove(name);
        if (call.member() == "Lock")
            remove(name + "_open");
        send(call, QVariantList());
    }

private:
    void unmountOne(const QString& name) {
        QVariantMap& properties = of(name, "Filesystem");
        auto points = properties["MountPoints"].value<QByteArrayList>();
        if (points.isEmpty())
            return;
        const QByteArray path = points.takeFirst();
        properties["MountPoints"] = QVariant::fromValue(points);
        if (onUnmounted)
            onUnmounted(path.chopped(1));
        tellChanged(name, "Filesystem", properties);
    }

    inline static const QString base = "/org/freedesktop/UDisks2";
    inline static const QString prefix = "org.freedesktop.UDisks2.";
    inline static const QString manager = "org.freedesktop.DBus.ObjectManager";
};

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
