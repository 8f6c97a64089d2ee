#pragma once

#include "Linux/Volumes/DiskMap.h"
#include "Linux/Volumes/DriveClaims.h"

#include <QDBusConnection>

namespace velmorquit {

/// One attempt to let the drive of a volume go, with UDisks2: first all file systems on it, then
/// the encrypted devices, then the drive itself. It stops at the first that fails; file systems
/// that were unmounted until then stay so. Owns all that it needs, and waits: for any thread but
/// the main one.
class DriveRelease {
public:
    /// How long an answer is waited for, at most, in milliseconds.
    struct Patience {
        int account = 30'000;
        int unmount = 15 * 60'000; ///< a stick may have gigabytes yet to write
        int lock = 60'000;
        int drive = 3 * 60'000;
    };

    DriveRelease(QDBusConnection bus, std::string root, Patience patience, DriveClaims& claims)
        : bus_(std::move(bus)), root_(std::move(root)), patience_(patience), claims_(claims) {}

    /// True when the drive of what is mounted there was let go, or nothing is mounted there.
    bool run(const std::string& path);

    /// After a failure: why, for the log.
    [[nodiscard]] const QString& reason() const { return reason_; }

private:
    /// The drives of what is mounted there, or of what was when an attempt failed; none when
    /// nothing is. False when that can't be told.
    bool find(const std::string& path, std::set<QString>& drives);
    bool letGo(const std::string& path, const std::set<QString>& drives);
    bool unmountAll(const std::set<QString>& blocks, const std::set<QString>& drives,
                    const DiskMap& map);
    bool unmount(const QString& block);
    bool lockAll(const std::set<QString>& blocks, const BlockLayers& layers);
    bool isNothingLeft(const std::set<QString>& drives, const Devices& devices);
    bool letDriveGo(const QString& drive);
    [[nodiscard]] bool sharesItsCase(const QString& drive) const;

    bool refresh();
    [[nodiscard]] QDBusMessage ask(const QString& object, const QString& interface,
                                   const QString& method, int patience) const;
    /// Keeps the reason, and is false.
    bool fail(const QString& what, const QDBusMessage& answer);

    QDBusConnection bus_;
    std::string root_;
    Patience patience_;
    DriveClaims& claims_;
    DiskAccount account_;
    QString reason_;
};

} // namespace velmorquit
