#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QStringList>

#include <utility>
#include <vector>

namespace velmorquit {

/// Stands for whoever keeps the list of tray icons on a bus. It doesn't look whether they exist.
class StandInWatcher final : public QDBusVirtualObject {
public:
    static constexpr const char* service = "org.kde.StatusNotifierWatcher";

    explicit StandInWatcher(QDBusConnection connection) : bus(std::move(connection)) {
        bus.registerVirtualObject("/StatusNotifierWatcher", this);
    }
    StandInWatcher(const StandInWatcher&) = delete;
    StandInWatcher& operator=(const StandInWatcher&) = delete;
    ~StandInWatcher() override { bus.unregisterObject("/StatusNotifierWatcher"); }

    void appear() { bus.registerService(service); }
    void disappear() { bus.unregisterService(service); }
    /// Somebody who draws the icons has come or gone.
    void setHosts(int count) {
        const bool isMore = count > std::exchange(hosts, count);
        tell(bus, isMore ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered");
    }
    /// Icons have come or gone.
    void setItems(const QStringList& entries) {
        const bool isMore = entries.size() > std::exchange(items, entries).size();
        tell(bus, isMore ? "StatusNotifierItemRegistered" : "StatusNotifierItemUnregistered");
    }
    static void tell(const QDBusConnection& bus, const char* signal) {
        bus.send(QDBusMessage::createSignal("/StatusNotifierWatcher", service, signal));
    }
    /// Answers what it was asked while it was slow.
    void answer() {
        for (const QDBusMessage& question : std::exchange(pending, {}))
            reply(question);
    }

    /// As much as Qt wants to know of one before it tells it of icons.
    [[nodiscard]] QString introspect(const QString&) const override {
        return QStringLiteral(
            "<interface name=\"org.kde.StatusNotifierWatcher\">"
            "<property name=\"IsStatusNotifierHostRegistered\" type=\"b\" access=\"read\"/>"
            "<method name=\"RegisterStatusNotifierItem\"><arg type=\"s\" "
            "direction=\"in\"/></method>"
            "</interface>");
    }
    bool handleMessage(const QDBusMessage& question, const QDBusConnection&) override {
        const QVariantList in = question.arguments();
        if (question.member() == "RegisterStatusNotifierItem") {
            registered << in.value(0).toString();
            bus.send(question.createReply());
            return true;
        }
        if (question.member() != "Get" || in.value(0).toString() != service)
            return false;
        ++questions;
        if (isSlow)
            pending.push_back(question);
        else
            reply(question);
        return true;
    }

    QDBusConnection bus;
    bool isSlow = false;
    int hosts = 1;
    QStringList items;
    /// Icons that have asked to be listed.
    QStringList registered;
    int questions = 0;
    std::vector<QDBusMessage> pending;

private:
    void reply(const QDBusMessage& question) const {
        const QString property = question.arguments().value(1).toString();
        QVariant value;
        if (property == "IsStatusNotifierHostRegistered")
            value = hosts > 0;
        else if (property == "RegisteredStatusNotifierItems")
            value = items;
        bus.send(value.isValid()
                     ? question.createReply(QVariant::fromValue(QDBusVariant(value)))
                     : question.createErrorReply(QDBusError::UnknownProperty, property));
    }
};

} // namespace velmorquit
