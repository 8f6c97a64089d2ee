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
    /// How long the bus may take to answer.
    static constexpr BusTerms::Patience patience{3000};

    /// `proc` is laid out like /proc.
    explicit BusCallers(QDBusConnection bus, std::string proc = "/proc")
        : bus_(std::move(bus)), proc_(std::move(proc)) {}

    /// Asks the bus, without waiting. Calls `told` once, in the order of the questions, unless this
    /// object goes before. A caller that has gone or can't be looked at counts as confined.
    void find(const QString& connection, std::function<void(const RemoteCaller&)> told);

    /// The caller with the bus's description of its connection.
    [[nodiscard]] RemoteCaller callerOf(const QVariantMap& credentials) const;

private:
    QDBusConnection bus_;
    std::string proc_;
    BusCalls questions_;
};

} // namespace velmorquit
