#include "Linux/Volumes/DriveRelease.h"

#include <QDBusMessage>

#include <algorithm>

namespace velmorquit {

namespace {

const QString notMounted = QStringLiteral("org.freedesktop.UDisks2.Error.NotMounted");

bool isError(const QDBusMessage& answer) { return answer.type() != QDBusMessage::ReplyMessage; }

auto depthOf(const std::vector<std::string>& mountPoints) {
    std::ptrdiff_t depth = 0;
    for (const std::string& path : mountPoints)
        depth = std::max(depth, std::ranges::count(path, '/'));
    return depth;
}

} // namespace

bool DriveRelease::run(const std::string& path) {
    std::set<QString> drives;
    // Without UDisks2 the kernel can still tell that nothing is mounted there.
    if (!refresh())
        return claims_.unfinished(path).empty() && !BlockLayers(root_).isMounted(path);
    if (!find(path, drives))
        return false;
    if (drives.empty())
        return true;
    const DriveClaims::Claim claim(claims_, drives);
    // Another thread may have released it while this one waited.
    std::set<QString> still;
    if (!refresh() || !find(path, still))
        return false;
    if (still.empty())
        return true;
    if (!std::ranges::includes(drives, still)) {
        reason_ = QStringLiteral("è passato su un'altra unità");
        return false;
    }
    return letGo(path, still);
}

bool DriveRelease::find(const std::string& path, std::set<QString>& drives) {
    const BlockLayers layers(root_);
    const DiskMap map(account_, layers);
    const QString block = map.blockAt(path);
    if (!block.isEmpty()) {
        drives = map.drivesOf(block);
        return true;
    }
    if (layers.isMounted(path)) {
        reason_ = QStringLiteral("UDisks2 non lo conosce");
        return false;
    }
    drives = claims_.unfinished(path);
    std::erase_if(drives, [this](const QString& drive) {
        return !account_.drives.contains(drive) && !account_.blocks.contains(drive);
    });
    if (drives.empty())
        claims_.note({path}, {});
    return true;
}

bool DriveRelease::letGo(const std::string& path, const std::set<QString>& drives) {
    const BlockLayers layers(root_);
    const DiskMap map(account_, layers);
    const std::set<QString> blocks = map.blocksOn(drives);
    if (std::ranges::any_of(blocks, [&](const QString& block) { return map.holdsSystem(block); })) {
        reason_ = QStringLiteral("il sistema ne ha bisogno");
        return false;
    }
    std::vector<std::string> paths{path};
    Devices devices;
    for (const QString& block : blocks) {
        const DiskBlock& known = account_.blocks.at(block);
        paths.insert(paths.end(), known.mountPoints.begin(), known.mountPoints.end());
        devices.insert(known.device);
    }
    const bool isDone =
        unmountAll(blocks, drives, map) && lockAll(blocks, layers) &&
        isNothingLeft(drives, devices) &&
        std::ranges::all_of(drives, [this](const QString& drive) { return letDriveGo(drive); });
    claims_.note(paths, isDone ? std::set<QString>() : drives);
    return isDone;
}

// Inner mounts go before outer ones, and an image before the file system that its file is on.
bool DriveRelease::unmountAll(const std::set<QString>& blocks, const std::set<QString>& drives,
                              const DiskMap& map) {
    std::vector<std::pair<std::ptrdiff_t, QString>> order;
    std::set<QString> images;
    for (const QString& block : blocks) {
        const auto theirs = map.drivesOf(block);
        const bool isInImage = std::ranges::none_of(
            theirs, [&](const QString& drive) { return drives.contains(drive); });
        const auto depth = depthOf(account_.blocks.at(block).mountPoints);
        order.emplace_back(depth + (isInImage ? 1'000'000 : 0), block);
        if (isInImage && account_.blocks.at(block).isImage)
            images.insert(block);
    }
    std::ranges::sort(order, std::greater());
    const auto isOfImage = [](const auto& entry) { return entry.first >= 1'000'000; };
    const auto rest = std::ranges::find_if_not(order, isOfImage);
    const auto unmountOne = [this](const auto& entry) { return unmount(entry.second); };
    if (!std::all_of(order.begin(), rest, unmountOne))
        return false;
    // An image that is still in use keeps its file open, and the next step fails.
    for (const QString& image : images)
        (void)ask(image, UDisks::loop, "Delete", patience_.lock);
    return std::all_of(rest, order.end(), unmountOne);
}

// Each call unmounts only one of its mount points.
bool DriveRelease::unmount(const QString& block) {
    constexpr int limit = 100;
    for (int round = 0; round < limit; ++round) {
        const auto found = account_.blocks.find(block);
        if (found == account_.blocks.end() || found->second.mountPoints.empty())
            return true;
        const QDBusMessage answer = ask(block, UDisks::fileSystem, "Unmount", patience_.unmount);
        if (answer.errorName() == notMounted)
            return true;
        if (!refresh())
            return false;
        const auto now = account_.blocks.find(block);
        const bool isStill = now != account_.blocks.end() && !now->second.mountPoints.empty();
        if (isError(answer) && isStill)
            return fail(block, answer);
    }
    reason_ = QStringLiteral("%1 resta montato").arg(block);
    return false;
}

bool DriveRelease::lockAll(const std::set<QString>& blocks, const BlockLayers& layers) {
    struct Content {
        std::size_t height;
        QString block;
        QString outer;
    };
    std::vector<Content> order;
    for (const QString& block : blocks) {
        const auto found = account_.blocks.find(block);
        if (found != account_.blocks.end() && !found->second.encryptedBy.isEmpty())
            order.push_back(
                {layers.beneath(found->second.device).size(), block, found->second.encryptedBy});
    }
    std::ranges::sort(order, std::greater(), &Content::height);
    for (const Content& content : order) {
        const QDBusMessage answer = ask(content.outer, UDisks::encrypted, "Lock", patience_.lock);
        if (!isError(answer))
            continue;
        if (!refresh())
            return false;
        if (account_.blocks.contains(content.block))
            return fail(content.outer, answer);
    }
    return true;
}

// UDisks2 leaves out mounts of a part of a file system; the kernel doesn't.
bool DriveRelease::isNothingLeft(const std::set<QString>& drives, const Devices& devices) {
    if (!refresh())
        return false;
    const BlockLayers layers(root_);
    for (const QString& block : DiskMap(account_, layers).blocksOn(drives)) {
        const DiskBlock& known = account_.blocks.at(block);
        if (!known.mountPoints.empty() || !known.encryptedBy.isEmpty()) {
            reason_ = QStringLiteral("%1 è ancora in uso").arg(block);
            return false;
        }
    }
    for (const BlockLayers::Mount& mount : layers.mounts()) {
        const bool isOnIt = std::ranges::any_of(
            mount.devices, [&](dev_t device) { return devices.contains(device); });
        if (isOnIt) {
            reason_ =
                QStringLiteral("è montato anche in %1").arg(QString::fromStdString(mount.path));
            return false;
        }
    }
    return true;
}

// A drive that can do neither is safe once everything on it is unmounted.
bool DriveRelease::letDriveGo(const QString& drive) {
    const auto found = account_.drives.find(drive);
    if (found == account_.drives.end())
        return true;
    std::vector<const char*> ways;
    if (found->second.isEjectable.value_or(false))
        ways.push_back("Eject");
    if (found->second.canPowerOff.value_or(false) && !sharesItsCase(drive))
        ways.push_back("PowerOff");
    if (ways.empty())
        return true;
    QDBusMessage answer;
    for (const char* way : ways) {
        answer = ask(drive, UDisks::drive, way, patience_.drive);
        if (!isError(answer))
            return true;
    }
    // It may have been unplugged by now.
    return refresh() && (!account_.drives.contains(drive) || fail(drive, answer));
}

// Powering off affects the whole case.
bool DriveRelease::sharesItsCase(const QString& drive) const {
    const auto sibling = account_.drives.at(drive).sibling;
    if (!sibling || sibling->isEmpty())
        return false;
    return std::ranges::any_of(account_.blocks, [&](const auto& entry) {
        const auto other = account_.drives.find(entry.second.drive);
        return other != account_.drives.end() && other->first != drive &&
               other->second.sibling == sibling && !entry.second.mountPoints.empty();
    });
}

bool DriveRelease::refresh() {
    QDBusMessage question = QDBusMessage::createMethodCall(
        UDisks::service, UDisks::path, UDisks::objectManager, "GetManagedObjects");
    const QDBusMessage answer = bus_.call(question, QDBus::Block, patience_.account);
    auto account = DiskAccount::from(answer);
    if (!account)
        return fail(UDisks::service, answer);
    account_ = std::move(*account);
    return true;
}

// All methods take only options. Users who need a password for them are asked for it.
QDBusMessage DriveRelease::ask(const QString& object, const QString& interface,
                               const QString& method, int patience) const {
    QDBusMessage question =
        QDBusMessage::createMethodCall(UDisks::service, object, interface, method);
    question.setInteractiveAuthorizationAllowed(true);
    question << QVariantMap{{"auth.no_user_interaction", false}};
    return bus_.call(question, QDBus::Block, patience);
}

bool DriveRelease::fail(const QString& what, const QDBusMessage& answer) {
    reason_ = QStringLiteral("%1: %2 %3").arg(what, answer.errorName(), answer.errorMessage());
    return false;
}

} // namespace velmorquit
