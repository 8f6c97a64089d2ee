#pragma once

#include "Linux/Volumes/DiskMap.h"
#include "Linux/Volumes/DriveClaims.h"

#include <QDBusConnection>

namespace velmorquit {

/// One attempt to release the drive of a volume with UDisks2: first all file systems on it, then
/// the encrypted devices, then the drive itself. It stops at the first failure; file systems
/// unmounted before remain so. Owns everything it needs, and waits: for any thread except the main
/// one.
class DriveRelease {
public:
    /// The longest waits for an answer, in milliseconds.
    struct Patience {
        int account = 30'000;
        int unmount = 15 * 60'000; ///< gigabytes may still have to be written to a stick
        int lock = 60'000;
        int drive = 3 * 60'000;
    };

    DriveRelease(QDBusConnection bus, std::string root, Patience patience, DriveClaims& claims)
        : bus_(std::move(bus)), root_(std::move(root)), patience_(patience), claims_(claims) {}

    /// True if the drive of the volume mounted there was released, or nothing is mounted there.
    bool run(const std::string& path);

    /// After a failure: the reason, for the log.
    [[nodiscard]] const QString& reason() const { return reason_; }

private:
    /// The drives of the volume mounted there, or of the one that an attempt failed for; none if
    /// nothing is mounted. False when that can't be told.
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
    /// Keeps the reason, and returns false.
    bool fail(const QString& what, const QDBusMessage& answer);

    QDBusConnection bus_;
    std::string root_;
    Patience patience_;
    DriveClaims& claims_;
    DiskAccount account_;
    QString reason_;
};

} // namespace velmorquit
