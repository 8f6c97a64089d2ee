#include "Linux/Appearance/PortalSettings.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QStringList>

#include <optional>
#include <utility>

namespace velmorquit {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settings = QStringLiteral("org.freedesktop.portal.Settings");

/// The least time between questions to a portal that comes and goes.
constexpr Paced::Pace pace{.rest = std::chrono::milliseconds(200)};

std::string fullName(const QString& group, const QString& key) {
    return (group + ' ' + key).toStdString();
}

/// None for anything but numbers and texts.
std::optional<DesktopSettings::mapped_type> settingOf(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return value.toLongLong();
    case QMetaType::QString:
        return value.toString().toStdString();
    default:
        return std::nullopt;
    }
}

} // namespace

DesktopSettings portalSettings(const QMap<QString, QVariantMap>& groups,
                               const std::set<std::string>& wanted) {
    DesktopSettings values;
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        for (auto entry = group->cbegin(); entry != group->cend(); ++entry) {
            std::string name = fullName(group.key(), entry.key());
            const auto setting = settingOf(entry.value());
            if (setting && wanted.contains(name))
                values.emplace(std::move(name), *setting);
        }
    }
    return values;
}

PortalSettings::PortalSettings(QDBusConnection bus, std::set<std::string> wanted,
                               std::function<void()> changed)
    : bus_(std::move(bus)), wanted_(std::move(wanted)), changed_(std::move(changed)),
      questions_(pace, [this] { ask(); }) {
    if (!bus_.isConnected())
        return;
    name_.emplace(bus_, service, [this](const QString& owner) { hearOwner(owner); });
    listen();
    ask();
}

std::set<QString> PortalSettings::groups() const {
    std::set<QString> groups;
    for (const std::string& name : wanted_)
        groups.insert(QString::fromStdString(name.substr(0, name.find(' '))));
    return groups;
}

// These name no sender: given a name, QtDBus would wait for the bus to tell its owner.
void PortalSettings::listen() {
    for (const QString& group : groups())
        bus_.connect({}, path, settings, "SettingChanged", {group}, {}, this,
                     SLOT(hearChanged(QDBusMessage)));
}

void PortalSettings::ask() {
    QDBusMessage question = QDBusMessage::createMethodCall(service, path, settings, "ReadAll");
    QStringList wanted;
    for (const QString& group : groups())
        wanted << group;
    question << wanted;
    question_.send(bus_, question, [this](const QDBusMessage& answer) { hearAnswer(answer); },
                   {.signature = "a{sa{sv}}"});
}

void PortalSettings::hearAnswer(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage)
        return;
    QMap<QString, QVariantMap> groups;
    answer.arguments().value(0).value<QDBusArgument>() >> groups;
    const DesktopSettings values = portalSettings(groups, wanted_);
    owner_ = answer.service();
    if (std::exchange(values_, values) != values)
        changed_();
}

void PortalSettings::hearOwner(const QString& owner) {
    owner_.clear();
    question_.drop();
    if (!owner.isEmpty())
        questions_.ask();
}

// Changes before the answer are already in the answer.
void PortalSettings::hearChanged(const QDBusMessage& signal) {
    if (signal.service() != owner_ || signal.signature() != "ssv")
        return;
    const QVariantList in = signal.arguments();
    const std::string name = fullName(in[0].toString(), in[1].toString());
    const auto setting = settingOf(in[2].value<QDBusVariant>().variant());
    if (!wanted_.contains(name) || !setting)
        return;
    const auto former = values_.find(name);
    if (former != values_.end() && former->second == *setting)
        return;
    values_[name] = *setting;
    changed_();
}

} // namespace velmorquit
