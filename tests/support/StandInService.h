#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace velmorquit {

/// An error in the place of an answer.
struct Refusal {
    QString name;
    QString text = QStringLiteral("no");

    bool operator==(const Refusal&) const = default;
    operator QVariant() const { return QVariant::fromValue(*this); }
};

inline QVariant inVariant(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

/// Stands for a service on a bus: all objects of one connection, under the names that it takes. It
/// keeps a line of each call and answers what the test had it say.
class StandInService : public QDBusVirtualObject {
public:
    explicit StandInService(QDBusConnection connection,
                            std::initializer_list<const char*> names = {})
        : bus(std::move(connection)) {
        EXPECT_TRUE(bus.registerVirtualObject("/", this, QDBusConnection::SubPath));
        for (const char* name : names)
            own(name);
    }
    StandInService(const StandInService&) = delete;
    StandInService& operator=(const StandInService&) = delete;
    ~StandInService() override { bus.unregisterObject("/"); }

    void own(const QString& name) { EXPECT_TRUE(bus.registerService(name)) << name.toStdString(); }
    void disown(const QString& name) { EXPECT_TRUE(bus.unregisterService(name)); }
    void signal(const QString& path, const QString& interface, const QString& member,
                const QVariantList& arguments = {}) const {
        QDBusMessage message = QDBusMessage::createSignal(path, interface, member);
        message.setArguments(arguments);
        bus.send(message);
    }
    /// Answers what it was asked while it was slow.
    void answer() {
        for (const QDBusMessage& call : std::exchange(pending, {}))
            reply(call);
    }
    QStringList takeCalls() { return std::exchange(calls, {}); }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
        if (call.member() == "Introspect")
            return false;
        if (const QString line = lineOf(call); !line.isEmpty())
            calls << line;
        if (isSlow)
            pending << call;
        else
            reply(call);
        return true;
    }

    QDBusConnection bus;
    /// The answer to "path Member", "Get Property", "Member", or to all else under "": a value, a
    /// list for several or none, a Refusal; nothing where it is silent.
    QVariantMap says;
    QStringList calls;
    bool isSlow = false;
    QList<QDBusMessage> pending;

protected:
    [[nodiscard]] virtual QString lineOf(const QDBusMessage& call) const {
        QStringList words{call.member()};
        for (const QVariant& argument : call.arguments())
            words << argument.toString();
        return words.join(" | ");
    }
    virtual void reply(const QDBusMessage& call) {
        const QVariant unknown = Refusal{"org.freedesktop.DBus.Error.UnknownMethod"};
        for (const QString& key : {call.path() + ' ' + call.member(),
                                   "Get " + call.arguments().value(1).toString(), call.member()}) {
            if (says.contains(key))
                return send(call, says[key]);
        }
        send(call, says.value("", unknown));
    }
    void send(const QDBusMessage& call, const QVariant& answer) const {
        if (answer.canConvert<Refusal>()) {
            const auto refusal = answer.value<Refusal>();
            bus.send(call.createErrorReply(refusal.name, refusal.text));
        } else if (answer.typeId() == QMetaType::QVariantList) {
            bus.send(call.createReply(answer.toList()));
        } else if (answer.isValid()) {
            bus.send(call.createReply(answer));
        }
    }
};

} // namespace velmorquit
