#pragma once

#include "support/Waiting.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace velmorquit {

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

/// Stands in for UDisks2 on a bus: tells of the objects that it is given, and of their changes.
/// Keeps a line for each thing that it was asked to do, and does so, unless `onCall` answers first.
class StandInDisks final : public QDBusVirtualObject {
public:
    explicit StandInDisks(QDBusConnection bus) : bus_(std::move(bus)) {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<Objects>();
        qDBusRegisterMetaType<QByteArrayList>();
    }

    void start() {
        bus_.registerVirtualObject(base, this, QDBusConnection::SubPath);
        bus_.registerService("org.freedesktop.UDisks2");
    }
    void stop() {
        bus_.unregisterService("org.freedesktop.UDisks2");
        bus_.unregisterObject(base);
    }

    void drive(const QString& name, const QVariantMap& properties) {
        objects[pathOf(name)][prefix + "Drive"] = properties;
    }
    void block(const QString& name, dev_t device, const QString& drive,
               const QVariantMap& properties = {}) {
        QVariantMap all{{"DeviceNumber", qulonglong(device)},
                        {"Drive", QVariant::fromValue(QDBusObjectPath(
                                      drive.isEmpty() ? "/" : pathOf(drive).path()))},
                        {"HintIgnore", false},
                        {"HintSystem", false},
                        {"Size", qulonglong(1 << 20)},
                        {"IdLabel", ""}};
        all.insert(properties);
        objects[pathOf(name)][prefix + "Block"] = all;
    }
    /// Says so too, if it is started.
    void mount(const QString& block, const QByteArrayList& mountPoints) {
        QByteArrayList ended;
        for (const QByteArray& path : mountPoints)
            ended << path + '\0';
        QVariantMap& properties = objects[pathOf(block)][prefix + "Filesystem"];
        properties["MountPoints"] = QVariant::fromValue(ended);
        tellChanged(block, "Filesystem", properties);
    }
    void tellChanged(const QString& name, const QString& interface, const QVariantMap& values,
                     const QStringList& invalidated = {}) {
        signal(pathOf(name).path(), "org.freedesktop.DBus.Properties", "PropertiesChanged",
               {prefix + interface, values, invalidated});
    }
    void tellAdded(const QString& name) {
        signal(base, manager, "InterfacesAdded",
               {QVariant::fromValue(pathOf(name)), QVariant::fromValue(objects[pathOf(name)])});
    }
    void remove(const QString& name) {
        const QStringList interfaces = objects.take(pathOf(name)).keys();
        signal(base, manager, "InterfacesRemoved", {QVariant::fromValue(pathOf(name)), interfaces});
    }
    void signal(const QString& path, const QString& interface, const QString& member,
                const QVariantList& arguments) {
        QDBusMessage message = QDBusMessage::createSignal(path, interface, member);
        message.setArguments(arguments);
        bus_.send(message);
    }

    static QDBusObjectPath pathOf(const QString& name) {
        return QDBusObjectPath(base + '/' + name);
    }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        const QString member = message.member();
        if (member == "GetManagedObjects") {
            ++accounts;
            if (!onAccount || !onAccount(message))
                bus_.send(message.createReply(QVariant::fromValue(objects)));
            return true;
        }
        const QString name = message.path().section('/', -1);
        calls << member + ' ' + name;
        if (onCall && onCall(calls.back(), message))
            return true;
        if (member == "Unmount")
            unmountOne(name);
        if (member == "PowerOff" || member == "Delete")
            remove(name);
        if (member == "Lock")
            remove(name + "_open");
        bus_.send(message.createReply());
        return true;
    }
    void refuse(const QDBusMessage& message, const QString& error) {
        bus_.send(message.createErrorReply("org.freedesktop.UDisks2.Error." + error, "no"));
    }

    Objects objects;
    QStringList calls;
    int accounts = 0; ///< how often all objects were asked for
    /// True when it has answered, or means never to.
    std::function<bool(const QDBusMessage&)> onAccount;
    std::function<bool(const QString& call, const QDBusMessage&)> onCall;
    std::function<void(const QByteArray&)> onUnmounted;

private:
    void unmountOne(const QString& name) {
        auto& properties = objects[pathOf(name)][prefix + "Filesystem"];
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
    QDBusConnection bus_;
};

} // namespace velmorquit
