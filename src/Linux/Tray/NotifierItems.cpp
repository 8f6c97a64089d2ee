#include "Linux/Tray/NotifierItems.h"

#include <QDBusPendingCall>
#include <QDBusVariant>

#include <algorithm>
#include <utility>

namespace velmorquit {

namespace {

const QString service = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString path = QStringLiteral("/StatusNotifierWatcher");

/// The least time between questions about a list of icons that changes all the time.
constexpr Paced::Pace pace{.rest = std::chrono::milliseconds(100)};

} // namespace

NotifierEntry NotifierEntry::from(const QString& text) {
    const auto end =
        std::ranges::find_if(text, [](QChar letter) { return letter == '/' || letter == '@'; });
    const auto path = std::find(end, text.end(), QLatin1Char('/'));
    return {text.left(end - text.begin()), path == text.end()
                                               ? QStringLiteral("/StatusNotifierItem")
                                               : text.mid(path - text.begin())};
}

NotifierItems::NotifierItems(QDBusConnection bus)
    : bus_(std::move(bus)), questions_(pace, [this] {
          if (list_.isOpen())
              isOutdated_ = true;
          else
              ask();
      }) {
    if (!bus_.isConnected())
        return;
    name_.emplace(bus_, service, [this](const QString& owner) { hearOwner(owner); });
    listen();
    ask();
}

std::set<ProcessId> NotifierItems::processes() const {
    std::set<ProcessId> processes;
    for (const auto& [name, item] : items_)
        processes.insert(item.process);
    processes.erase(0);
    return processes;
}

bool NotifierItems::click(ProcessId process) {
    const auto found = std::ranges::find_if(
        items_, [process](const auto& item) { return item.second.process == process; });
    if (found == items_.end() || process == 0)
        return false;
    QDBusMessage call = QDBusMessage::createMethodCall(found->first, found->second.path,
                                                       "org.kde.StatusNotifierItem", "Activate");
    call.setAutoStartService(false);
    call << 0 << 0;
    bus_.asyncCall(call);
    return true;
}

// These name no sender: given a name, QtDBus would wait for the bus to tell its owner.
void NotifierItems::listen() {
    for (const char* signal : {"StatusNotifierItemRegistered", "StatusNotifierItemUnregistered"})
        bus_.connect({}, path, service, signal, this, SLOT(hearItems(QDBusMessage)));
}

void NotifierItems::ask() {
    isOutdated_ = false;
    QDBusMessage question =
        QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Properties", "Get");
    question.setAutoStartService(false);
    question << service << "RegisteredStatusNotifierItems";
    list_.send(bus_, question, [this](const QDBusMessage& answer) { hearList(answer); });
}

// All owners are asked for anew, since a well-known name may have moved to another process. What
// was known holds until the answer.
void NotifierItems::hearList(const QDBusMessage& answer) {
    if (answer.type() == QDBusMessage::ReplyMessage)
        owner_ = answer.service();
    std::map<QString, Item> items;
    const auto list = answer.arguments().value(0).value<QDBusVariant>().variant();
    for (const QString& entry : list.toStringList()) {
        if (items.size() == mostItems)
            break;
        const auto [name, path] = NotifierEntry::from(entry);
        const auto known = items_.find(name);
        if (!name.isEmpty())
            items.emplace(name, Item{known == items_.end() ? 0 : known->second.process, path});
    }
    items_ = std::move(items);
    if (isOutdated_)
        questions_.ask();
    processes_.drop();
    for (const auto& [name, item] : items_)
        askProcess(name);
}

void NotifierItems::askProcess(const QString& name) {
    processes_.send(bus_, busQuestion("GetConnectionUnixProcessID", {name}),
                    [this, name](const QDBusMessage& answer) {
                        const auto item = items_.find(name);
                        if (item == items_.end())
                            return;
                        const bool isKnown = answer.type() == QDBusMessage::ReplyMessage;
                        item->second.process = isKnown ? answer.arguments().value(0).toInt() : 0;
                    });
}

void NotifierItems::hearOwner(const QString& owner) {
    list_.drop();
    processes_.drop();
    items_.clear();
    owner_ = owner;
    if (!owner_.isEmpty())
        questions_.ask();
}

// Watchers disagree on the signals' arguments, but hardly on the list. Many icons appear at once
// when the user logs in.
void NotifierItems::hearItems(const QDBusMessage& signal) {
    if (owner_.isEmpty() || signal.service() == owner_)
        questions_.ask();
}

} // namespace velmorquit
