#pragma once

#include "Linux/Appearance/DesktopSettings.h"
#include "Linux/Bus/BusCall.h"
#include "Linux/Bus/BusName.h"
#include "Linux/Loop/Paced.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>

#include <functional>
#include <optional>
#include <set>
#include <string>

namespace velmorquit {

/// The portal's values that are both `wanted` and numbers or texts. Their names are prefixed by
/// their group and a blank.
[[nodiscard]] DesktopSettings portalSettings(const QMap<QString, QVariantMap>& groups,
                                             const std::set<std::string>& wanted);

/// The settings that the desktop publishes on the session bus for programs of all desktops.
class PortalSettings final : public QObject {
    Q_OBJECT

public:
    /// `wanted` are names, each prefixed by its group and a blank. Asks for them at once, without
    /// waiting; that starts the portal if it isn't running but can be started. Calls `changed`, in
    /// a turn of its own, when the values change.
    PortalSettings(QDBusConnection bus, std::set<std::string> wanted,
                   std::function<void()> changed);

    /// Empty until it has answered. When it goes away, its last values stay.
    [[nodiscard]] const DesktopSettings& values() const { return values_; }

private Q_SLOTS:
    void hearChanged(const QDBusMessage& signal);

private:
    void listen();
    void hearOwner(const QString& owner);
    void ask();
    void hearAnswer(const QDBusMessage& answer);
    [[nodiscard]] std::set<QString> groups() const;

    QDBusConnection bus_;
    std::set<std::string> wanted_;
    std::function<void()> changed_;
    DesktopSettings values_;
    QString owner_; ///< unique name of the portal that these values are from
    Paced questions_;
    std::optional<BusName> name_;
    BusCall question_;
};

} // namespace velmorquit
