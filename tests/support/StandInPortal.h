#pragma once

#include "support/StandInService.h"

#include <QDBusMetaType>
#include <QMap>
#include <QVariantMap>

namespace velmorquit {

/// Stands for the program that publishes a desktop's settings on a bus.
class StandInPortal final : public StandInService {
public:
    using Groups = QMap<QString, QVariantMap>;
    static constexpr const char* service = "org.freedesktop.portal.Desktop";

    explicit StandInPortal(const QDBusConnection& connection) : StandInService(connection) {
        qDBusRegisterMetaType<Groups>();
    }

    void appear() { own(service); }
    void disappear() { disown(service); }
    void change(const QString& group, const QString& key, const QVariant& value) {
        groups[group][key] = value;
        tell(group, key, value);
    }
    void tell(const QString& group, const QString& key, const QVariant& value) const {
        signal("/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings",
               "SettingChanged", {group, key, inVariant(value)});
    }

    Groups groups;

protected:
    void reply(const QDBusMessage& call) override {
        if (call.path() != "/org/freedesktop/portal/desktop" ||
            call.interface() != "org.freedesktop.portal.Settings" || call.member() != "ReadAll")
            return StandInService::reply(call);
        Groups asked;
        for (const QString& group : call.arguments().value(0).toStringList()) {
            if (groups.contains(group))
                asked[group] = groups[group];
        }
        send(call, QVariant::fromValue(asked));
    }
};

} // namespace velmorquit
