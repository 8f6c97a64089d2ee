#include "Linux/Remote/ApplicationInterface.h"

#include <QDBusConnection>
#include <QDBusError>

#include <utility>

namespace velmorquit {

namespace {

/// Replies when the answer has come; the reply is empty unless the command failed.
ApplicationInterface::Answered replyTo(const QDBusMessage& call) {
    call.setDelayedReply(true);
    return [call](const RemoteAnswer& answer) {
        if (!call.isReplyRequired())
            return;
        const bool isUnknown = answer.status == RemoteAnswer::Status::unknown;
        QDBusConnection::sessionBus().send(
            answer.status == RemoteAnswer::Status::done
                ? call.createReply()
                : call.createErrorReply(isUnknown ? QDBusError::InvalidArgs : QDBusError::Failed,
                                        QString::fromStdString(answer.text)));
    };
}

} // namespace

ApplicationInterface::ApplicationInterface(QObject* owner, Perform perform)
    : QDBusAbstractAdaptor(owner), perform_(std::move(perform)) {}

void ApplicationInterface::Activate(const QVariantMap& platformData, const QDBusMessage& call) {
    RemoteCommand show{"show", {}};
    for (const char* key : {"activation-token", "desktop-startup-id"}) {
        const QString token = platformData.value(key).toString();
        if (!token.isEmpty()) {
            show.arguments.push_back(token.toStdString());
            break;
        }
    }
    perform_(show, call.service(), replyTo(call));
}

void ApplicationInterface::Open(const QStringList& /*files*/, const QVariantMap& platformData,
                                const QDBusMessage& call) {
    Activate(platformData, call);
}

void ApplicationInterface::ActivateAction(const QString& action, const QVariantList& parameters,
                                          const QVariantMap& /*platformData*/,
                                          const QDBusMessage& call) {
    RemoteCommand command{"action", {action.toStdString()}};
    for (const QVariant& parameter : parameters) {
        if (parameter.canConvert<int>() && parameter.typeId() != QMetaType::QString)
            command.arguments.push_back("minutes=" + parameter.toString().toStdString());
        for (const QString& text : parameter.toStringList())
            command.arguments.push_back(text.toStdString());
    }
    perform_(command, call.service(), replyTo(call));
}

QVariantMap takePlatformData() {
    constexpr std::pair<const char*, const char*> sources[] = {
        {"XDG_ACTIVATION_TOKEN", "activation-token"}, {"DESKTOP_STARTUP_ID", "desktop-startup-id"}};
    QVariantMap data;
    for (const auto& [variable, key] : sources) {
        const QString value = qEnvironmentVariable(variable);
        qunsetenv(variable);
        if (!value.isEmpty())
            data.insert(key, value);
    }
    return data;
}

} // namespace velmorquit
