#pragma once

#include "Linux/Bus/BusCall.h"
#include "Platform/RemoteCommands.h"

#include <QVariantMap>

#include <functional>
#include <string>

namespace velmorquit {

/// Finds out who is at the other end of a connection to the bus.
class BusCallers final {
public:
    /// The time that the bus has to tell.
    static constexpr BusTerms::Patience patience{3000};

    /// `proc` looks like /proc.
    explicit BusCallers(QDBusConnection bus, std::string proc = "/proc")
        : bus_(std::move(bus)), proc_(std::move(proc)) {}

    /// Asks the bus, without waiting, and tells who it is, once, unless this object goes before. In
    /// the order in which it was asked. Whoever has gone or can't be looked at counts as confined.
    void find(const QString& connection, std::function<void(const RemoteCaller&)> told);

    /// By what the bus says of a connection.
    [[nodiscard]] RemoteCaller callerOf(const QVariantMap& credentials) const;

private:
    QDBusConnection bus_;
    std::string proc_;
    BusCalls questions_;
};

} // namespace velmorquit
