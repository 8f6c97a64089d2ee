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
/// system, at its first mount point that shows all of it; in the order of UDisks2's
/// objects.
///
/// Nothing is known until UDisks2 has answered, and while it isn't running. Asking starts it where
/// it isn't running, as every file manager does: otherwise volumes that were mounted without it
/// would stay unknown.
class UDisksVolumes final : public QObject, public Volumes {
    Q_OBJECT

public:
    /// `bus` is the system bus; `root` is prefixed to /proc, /sys and /dev.
    UDisksVolumes(MainLoop& loop, SystemLog& log, QDBusConnection bus, std::string root = {},
                  DriveRelease::Patience patience = {});
    ~UDisksVolumes() override;

    [[nodiscard]] std::vector<Volume> mounted() const override;

    /// Asks for a password if the user needs one for this. A drive that can neither be ejected nor
    /// powered off counts as released once it is all unmounted. May outlast this object.
    bool unmountAndEject(const std::string& path) override;

    [[nodiscard]] Handle observe(std::function<void()> told) override;

private Q_SLOTS:
    void hearAdded(const QDBusMessage& signal);
    void hearRemoved(const QDBusMessage& signal);
    void hearChanged(const QDBusMessage& signal);

private:
    /// Shared with attempts on other threads, which may need it after this object's end.
    struct Shared {
        DriveClaims claims;
        SystemLog* log; ///< only for the main thread; null once this object is gone
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
    QString owner_; ///< unique name of the service that the account is from
    BusCall question_;
    BusName name_;
    bool isFailureLogged_ = false;
    Subscribers subscribers_;
};

} // namespace velmorquit
