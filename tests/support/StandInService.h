#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace velmorquit {

/// Stands for a service on a bus: all objects of one connection, under the names that it takes.
class StandInService : public QDBusVirtualObject {
public:
    explicit StandInService(QDBusConnection connection,
                            std::initializer_list<const char*> names = {})
        : bus(std::move(connection)) {
        EXPECT_TRUE(bus.registerVirtualObject("/", this, QDBusConnection::SubPath));
        for (const char* name : names)
            own(name);
    }
    StandInService(const StandInService&) = delete;
    StandInService& operator=(const StandInService&) = delete;
    ~StandInService() override { bus.unregisterObject("/"); }

    void own(const QString& name) { EXPECT_TRUE(bus.registerService(name)) << name.toStdString(); }
    void disown(const QString& name) { EXPECT_TRUE(bus.unregisterService(name)); }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
        hear(call);
        return true;
    }

    QDBusConnection bus;

protected:
    /// Whether and what it answers is its own affair.
    virtual void hear(const QDBusMessage& call) = 0;
};

} // namespace velmorquit
