#pragma once

#include "support/StandInService.h"

#include <QStringList>

namespace velmorquit {

/// Stands for whoever keeps the list of tray icons on a bus. It doesn't look whether they exist.
class StandInWatcher final : public StandInService {
public:
    static constexpr const char* service = "org.kde.StatusNotifierWatcher";

    using StandInService::StandInService;

    void appear() { own(service); }
    void disappear() { disown(service); }
    /// Somebody who draws the icons has come or gone.
    void setHosts(int count) {
        const bool isMore = count > std::exchange(hosts, count);
        tell(isMore ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered");
    }
    /// Icons have come or gone.
    void setItems(const QStringList& entries) {
        const bool isMore = entries.size() > std::exchange(items, entries).size();
        tell(isMore ? "StatusNotifierItemRegistered" : "StatusNotifierItemUnregistered");
    }
    void tell(const char* member) const { signal("/StatusNotifierWatcher", service, member); }

    /// As much as Qt wants to know of one before it tells it of icons.
    [[nodiscard]] QString introspect(const QString&) const override {
        return QStringLiteral(
            "<interface name=\"org.kde.StatusNotifierWatcher\">"
            "<property name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/>"
            "<method name=\"RegisterStatusNotifierItem\"><arg type=\"s\" "
            "direction=\"in\"/></method>"
            "</interface>");
    }

    int hosts = 1;
    QStringList items;
    /// Icons that have asked to be listed.
    QStringList registered;

protected:
    void reply(const QDBusMessage& call) override {
        const QVariantList in = call.arguments();
        if (call.member() == "RegisterStatusNotifierItem") {
            registered << in.value(0).toString();
            send(call, QVariantList());
        } else if (in.value(1) == "IsStatusNotifierHostRegistered") {
            send(call, inVariant(hosts > 0));
        } else if (in.value(1) == "RegisteredStatusNotifierItems") {
            send(call, inVariant(items));
        } else {
            StandInService::reply(call);
        }
    }
};

} // namespace velmorquit
