#pragma once

#include "Linux/Bus/BusCall.h"
#include "Linux/Bus/BusName.h"
#include "Linux/Volumes/DiskAccount.h"
#include "Linux/Volumes/DriveRelease.h"
#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"
#include "Platform/SystemLog.h"
#include "Platform/Volumes.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <memory>
#include <optional>

namespace velmorquit {

/// The volumes that UDisks2 keeps account of: those of block devices. One entry for each file
/// system, at the first of its mount points that shows all of it; in the order of UDisks2's
/// objects.
///
/// Nothing is known until UDisks2 has answered, and while it isn't there. It is started by being
/// asked where it isn't running, as every file manager does: what was mounted without it would stay
/// unknown otherwise.
class UDisksVolumes final : public QObject, public Volumes {
    Q_OBJECT

public:
    /// `bus` is the system bus; `root` is put before /proc, /sys and /dev.
    UDisksVolumes(MainLoop& loop, SystemLog& log, QDBusConnection bus, std::string root = {},
                  DriveRelease::Patience patience = {});
    ~UDisksVolumes() override;

    [[nodiscard]] std::vector<Volume> mounted() const override;

    /// Asks for a password where the user may do it only with one. A drive that can neither be
    /// ejected nor powered off is let go when all of it is unmounted. May outlast this object.
    bool unmountAndEject(const std::string& path) override;

    [[nodiscard]] Handle observe(std::function<void()> told) override;

private Q_SLOTS:
    void hearAdded(const QDBusMessage& signal);
    void hearRemoved(const QDBusMessage& signal);
    void hearChanged(const QDBusMessage& signal);

private:
    /// What attempts on other threads share with this object and may need after its end.
    struct Shared {
        DriveClaims claims;
        SystemLog* log; ///< for the main thread; none when this object is gone
    };

    void listen();
    void hearOwner(const QString& owner);
    void ask();
    void hearAccount(const QDBusMessage& answer);
    void note(const QDBusMessage& signal, bool (DiskAccount::*change)(const QDBusMessage&));
    void replace(std::optional<DiskAccount> account);

    MainLoop& loop_;
    QDBusConnection bus_;
    std::string root_;
    DriveRelease::Patience patience_;
    std::shared_ptr<Shared> shared_;
    std::optional<DiskAccount> account_;
    QString owner_; ///< who the account is from, by its unique name
    BusCall question_;
    BusName name_;
    bool isFailureLogged_ = false;
    Subscribers subscribers_;
};

} // namespace velmorquit
