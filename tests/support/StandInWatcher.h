#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <utility>
#include <vector>

namespace velmorquit {

/// Stands for whoever keeps the list of tray icons on a bus.
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
    static void tell(const QDBusConnection& bus, const char* signal) {
        bus.send(QDBusMessage::createSignal("/StatusNotifierWatcher", service, signal));
    }
    /// Answers what it was asked while it was slow.
    void answer() {
        for (const QDBusMessage& question : std::exchange(pending, {}))
            reply(question);
    }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& question, const QDBusConnection&) override {
        const QVariantList in = question.arguments();
        if (question.member() != "Get" || in.value(0).toString() != service ||
            in.value(1).toString() != "IsStatusNotifierHostRegistered")
            return false;
        if (isSlow)
            pending.push_back(question);
        else
            reply(question);
        return true;
    }

    QDBusConnection bus;
    bool isSlow = false;
    int hosts = 1;
    std::vector<QDBusMessage> pending;

private:
    void reply(const QDBusMessage& question) const {
        bus.send(question.createReply(QVariant::fromValue(QDBusVariant(hosts > 0))));
    }
};

} // namespace velmorquit
