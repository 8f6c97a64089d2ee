#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMap>
#include <QVariantMap>

#include <utility>

namespace velmorquit {

/// Stands for the program that publishes a desktop's settings on a bus.
class StandInPortal final : public QDBusVirtualObject {
public:
    using Groups = QMap<QString, QVariantMap>;
    static constexpr const char* service = "org.freedesktop.portal.Desktop";
    static constexpr const char* path = "/org/freedesktop/portal/desktop";
    static constexpr const char* interface = "org.freedesktop.portal.Settings";

    explicit StandInPortal(QDBusConnection connection) : bus(std::move(connection)) {
        qDBusRegisterMetaType<Groups>();
        bus.registerVirtualObject(path, this);
    }
    StandInPortal(const StandInPortal&) = delete;
    StandInPortal& operator=(const StandInPortal&) = delete;
    ~StandInPortal() override { bus.unregisterObject(path); }

    void appear() { bus.registerService(service); }
    void disappear() { bus.unregisterService(service); }
    void change(const QString& group, const QString& key, const QVariant& value) {
        groups[group][key] = value;
        tell(bus, group, key, value);
    }
    static void tell(const QDBusConnection& bus, const QString& group, const QString& key,
                     const QVariant& value) {
        QDBusMessage signal = QDBusMessage::createSignal(path, interface, "SettingChanged");
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        bus.send(signal);
    }
    /// Answers what it was asked while it was slow.
    void answer() {
        bus.send(pending);
        pending = {};
    }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& question, const QDBusConnection&) override {
        if (question.member() != "ReadAll" || question.interface() != interface)
            return false;
        ++questions;
        Groups asked;
        for (const QString& group : question.arguments().value(0).toStringList()) {
            if (groups.contains(group))
                asked[group] = groups[group];
        }
        const QDBusMessage reply = question.createReply(QVariant::fromValue(asked));
        if (isSlow)
            pending = reply;
        else
            bus.send(reply);
        return true;
    }

    QDBusConnection bus;
    Groups groups;
    bool isSlow = false;
    int questions = 0;
    QDBusMessage pending;
};

} // namespace velmorquit
