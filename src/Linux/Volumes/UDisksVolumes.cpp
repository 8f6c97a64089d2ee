#include "Linux/Volumes/UDisksVolumes.h"

#include <QCoreApplication>

#include <utility>

namespace velmorquit {

UDisksVolumes::UDisksVolumes(MainLoop& loop, SystemLog& log, QDBusConnection bus, std::string root,
                             DriveRelease::Patience patience)
    : loop_(loop), bus_(std::move(bus)), root_(std::move(root)), patience_(patience),
      shared_(std::make_shared<Shared>()),
      name_(bus_, UDisks::service, [this](const QString& owner) { hearOwner(owner); }) {
    shared_->log = &log;
    listen();
    ask();
}

UDisksVolumes::~UDisksVolumes() { shared_->log = nullptr; }

// These name no sender: given a name, QtDBus would wait for the bus to tell its owner.
void UDisksVolumes::listen() {
    bus_.connect({}, UDisks::path, UDisks::objectManager, "InterfacesAdded", this,
                 SLOT(hearAdded(QDBusMessage)));
    bus_.connect({}, UDisks::path, UDisks::objectManager, "InterfacesRemoved", this,
                 SLOT(hearRemoved(QDBusMessage)));
    for (const QString& interface : {UDisks::block, UDisks::fileSystem, UDisks::drive})
        bus_.connect({}, {}, UDisks::properties, "PropertiesChanged", {interface}, {}, this,
                     SLOT(hearChanged(QDBusMessage)));
}

// It may take long until the service has started and has looked at many drives.
void UDisksVolumes::ask() {
    // Without the bus a call would never be answered.
    if (!bus_.isConnected())
        return;
    const QDBusMessage question = QDBusMessage::createMethodCall(
        UDisks::service, UDisks::path, UDisks::objectManager, "GetManagedObjects");
    question_.send(bus_, question, [this](const QDBusMessage& answer) { hearAccount(answer); },
                   {.patience = BusTerms::endless});
}

void UDisksVolumes::hearAccount(const QDBusMessage& answer) {
    auto account = DiskAccount::from(answer);
    if (!account && !std::exchange(isFailureLogged_, true)) {
        const QString line =
            QStringLiteral("Velmor Quit: UDisks2 non risponde, le unità esterne mi restano ignote "
                           "(%1 %2)")
                .arg(answer.errorName(), answer.errorMessage());
        shared_->log->write(line.toStdString());
    }
    owner_ = account ? answer.service() : QString();
    replace(std::move(account));
}

void UDisksVolumes::hearOwner(const QString& owner) {
    owner_.clear();
    question_.drop();
    replace(std::nullopt);
    if (!owner.isEmpty())
        ask();
}

void UDisksVolumes::hearAdded(const QDBusMessage& signal) { note(signal, &DiskAccount::noteAdded); }

void UDisksVolumes::hearRemoved(const QDBusMessage& signal) {
    note(signal, &DiskAccount::noteRemoved);
}

void UDisksVolumes::hearChanged(const QDBusMessage& signal) {
    note(signal, &DiskAccount::noteChanged);
}

// Changes before the account are already in the account.
void UDisksVolumes::note(const QDBusMessage& signal,
                         bool (DiskAccount::*change)(const QDBusMessage&)) {
    if (owner_.isEmpty() || signal.service() != owner_ || !account_)
        return;
    const auto before = account_->mountPoints();
    if (!(*account_.*change)(signal))
        ask();
    if (account_->mountPoints() != before)
        subscribers_.tellLater(loop_);
}

void UDisksVolumes::replace(std::optional<DiskAccount> account) {
    const auto pointsOf = [](const std::optional<DiskAccount>& one) {
        return one ? one->mountPoints() : std::vector<std::string>();
    };
    const bool isOther = pointsOf(account) != pointsOf(account_);
    account_ = std::move(account);
    if (isOther)
        subscribers_.tellLater(loop_);
}

std::vector<Volume> UDisksVolumes::mounted() const {
    std::vector<Volume> volumes;
    if (!account_)
        return volumes;
    const BlockLayers layers(root_);
    const DiskMap map(*account_, layers);
    for (const auto& [object, block] : account_->blocks) {
        if (!block.mountPoints.empty())
            volumes.push_back(map.volumeOf(object));
    }
    return volumes;
}

bool UDisksVolumes::unmountAndEject(const std::string& path) {
    const auto shared = shared_;
    DriveRelease release(bus_, root_, patience_, shared->claims);
    if (release.run(path))
        return true;
    const QString line = QStringLiteral("Velmor Quit: «%1» non può essere espulso, %2")
                             .arg(QString::fromStdString(path), release.reason());
    if (QCoreApplication* application = QCoreApplication::instance())
        QMetaObject::invokeMethod(
            application,
            [shared, line] {
                if (shared->log)
                    shared->log->write(line.toStdString());
            },
            Qt::QueuedConnection);
    return false;
}

Handle UDisksVolumes::observe(std::function<void()> told) {
    return subscribers_.add(std::move(told));
}

} // namespace velmorquit
