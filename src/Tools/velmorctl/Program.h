#pragma once

#include "CommandLine.h"
#include "Remote/Fields.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <string>
#include <vector>

namespace velmorquit {

/// The running program, over the session bus. Its answers arrive later, in the event loop.
class Program final : public QObject {
    Q_OBJECT

public:
    /// A message, as it was sent and as it was parsed.
    struct Said {
        std::string text;
        remote::Json json;
    };
    using Hear = std::function<void(const Said&)>;
    /// Nothing more will be heard; `why` tells the user the reason.
    using Fail = std::function<void(const std::string& why, ExitStatus status)>;

    /// With `mayStart` the bus starts the program if it isn't running.
    Program(bool mayStart, Fail fail);

    /// False where there is no session bus.
    [[nodiscard]] bool isReachable() const { return bus_.isConnected(); }

    /// Gives a command; an answer of another kind counts as a failure.
    void perform(remote::Verb verb, const std::vector<std::string>& arguments, Hear hear);

    /// Makes it show itself, as a launcher does.
    void activate(std::function<void()> done);

    /// Hears all changes from now on.
    void follow(Hear hear);

private Q_SLOTS:
    void hearChange(const QString& change);
    void loseBus();

private:
    void send(QDBusMessage call, std::function<void(const std::string& answer)> done);
    void hearError(const QDBusError& error);
    /// Finds out which program gave an answer that this program wouldn't give.
    void blameAnswerer(const std::string& otherwise);

    bool mayStart_;
    Fail fail_;
    Hear change_;
    QDBusConnection bus_ = QDBusConnection::sessionBus();
    QDBusServiceWatcher watcher_;
};

} // namespace velmorquit
