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

/// An entry of the watcher's list: a name on the bus, which most watchers combine with the path of
/// the icon's object, some of them after an "@".
struct NotifierEntry {
    QString name; ///< empty for an invalid entry
    QString path;

    [[nodiscard]] static NotifierEntry from(const QString& text);
};

/// Knows the owners of the tray icons on the list of the session bus's watcher.
class NotifierItems final : public QObject {
    Q_OBJECT

public:
    /// The rest of a longer list is left out: no desktop has room for more.
    static constexpr std::size_t mostItems = 256;

    /// Asks the watcher at once, without waiting, and whenever the list changes. No service is
    /// started for this.
    explicit NotifierItems(QDBusConnection bus);

    /// The processes that own the connections of the icons: for a sandboxed program, the broker
    /// that represents it. From memory; empty without a watcher.
    [[nodiscard]] std::set<ProcessId> processes() const;

    /// Does the same as a click on the icon of that process: most show their window. False when it
    /// has no icon on the list. Returns at once, without knowing whether the icon understands.
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
        ProcessId process = 0; ///< 0 until the bus has told
        QString path;          ///< of the icon's object
    };

    QDBusConnection bus_;
    /// By the names on the bus that own icons.
    std::map<QString, Item> items_;
    QString owner_; ///< unique name of the watcher; empty until it is known
    std::optional<BusName> name_;
    BusCall list_;
    BusCalls processes_;      ///< asks for the owners of the icons on the last list
    bool isOutdated_ = false; ///< the list has changed since the last question
    Paced questions_;
};

} // namespace velmorquit
