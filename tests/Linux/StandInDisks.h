#pragma once

#include "support/StandInService.h"

#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QMap>

#include <functional>

namespace velmorquit {

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

/// Stands in for UDisks2 on a bus: tells of the objects that it is given, and of their changes.
/// Keeps a line for each thing that it was asked to do, and does so, unless `onCall` answers first.
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
    static QDBusObjectPath pathOf(const QString& name) {
        return QDBusObjectPath(base + '/' + name);
    }
    static QVariant linkTo(const QString& name) { return QVariant::fromValue(pathOf(name)); }

    Objects objects;
    int accounts = 0; ///< how often all objects were asked for
    /// True when it has answered, or means never to.
    std::function<bool(const QDBusMessage&)> onAccount;
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
            if (!onAccount || !onAccount(call))
                send(call, QVariant::fromValue(objects));
            return;
        }
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

} // namespace velmorquit
