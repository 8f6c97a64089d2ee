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

/// Those of the portal's values that are `wanted` and numbers or texts, by group and key. The names
/// are led by their group and a blank.
[[nodiscard]] DesktopSettings portalSettings(const QMap<QString, QVariantMap>& groups,
                                             const std::set<std::string>& wanted);

/// The settings that the desktop publishes on the session bus for the programs of all desktops.
class PortalSettings final : public QObject {
    Q_OBJECT

public:
    /// `wanted` are the names, each led by its group and a blank. Asks for them at once, without
    /// waiting, and has the portal started by that where it isn't running but can be. Calls
    /// `changed`, in a turn of its own, when it says something else.
    PortalSettings(QDBusConnection bus, std::set<std::string> wanted,
                   std::function<void()> changed);

    /// Empty until it has answered. When it goes away what it said last stays.
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
    QString owner_; ///< whose values these are, by its unique name
    Paced questions_;
    std::optional<BusName> name_;
    BusCall question_;
};

} // namespace velmorquit
