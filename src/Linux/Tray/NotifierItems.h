#pragma once

#include "Linux/Bus/BusCall.h"
#include "Linux/Bus/BusName.h"
#include "Linux/Loop/Paced.h"
#include "Platform/RunningApplication.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <set>

namespace velmorquit {

/// An entry of the watcher's list is a name on the bus, which most watchers let the path of the
/// icon's object follow, some of them after an "@".
struct NotifierEntry {
    QString name; ///< empty for an entry that makes no sense
    QString path;

    [[nodiscard]] static NotifierEntry from(const QString& text);
};

/// Knows whose tray icons are on the list that the watcher on the session bus keeps.
class NotifierItems final : public QObject {
    Q_OBJECT

public:
    /// Of a longer list the rest is left out: no desktop has room for so many.
    static constexpr std::size_t mostItems = 256;

    /// Asks the watcher at once, without waiting, and whenever the list changes. Nobody is started
    /// in order to be asked.
    explicit NotifierItems(QDBusConnection bus);

    /// The processes at the other end of the icons' connections: of a program in a sandbox it is
    /// the broker that speaks for it. From memory; empty while there is no watcher.
    [[nodiscard]] std::set<ProcessId> processes() const;

    /// Does what a click on the icon of that process does: most show their window. False when it
    /// has no icon on the list. Returns at once; whether the icon has understood is not told.
    bool click(ProcessId process);

private Q_SLOTS:
    void hearItems(const QDBusMessage& signal);

private:
    void listen();
    void hearOwner(const QString& owner);
    void ask();
    void hearList(const QDBusMessage& answer);
    void askProcess(const QString& name);

    struct Item {
        ProcessId process = 0; ///< 0 until the bus has said whose it is
        QString path;          ///< of the icon's object
    };

    QDBusConnection bus_;
    /// By the names on the bus that have icons.
    std::map<QString, Item> items_;
    QString owner_; ///< the watcher, by its unique name; empty until it is known
    std::optional<BusName> name_;
    BusCall list_;
    BusCalls processes_;      ///< asked for whose icons are on the last list
    bool isOutdated_ = false; ///< the list has changed since it was asked for
    Paced questions_;
};

} // namespace velmorquit
