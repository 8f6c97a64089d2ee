#include "Linux/Session/BusSessionRegistry.h"

#include "Linux/Bus/BusCall.h"
#include "Linux/Session/SessionAnswers.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

#include <chrono>
#include <cstdint>
#include <map>
#include <utility>

namespace velmorquit {

namespace {

/// An object of a service, and what may be missing without a failure: the service; only the
/// object, when the service mentioned it a moment ago; or anything.
struct Place {
    enum class Missing { service, object, anything };

    QString service;
    QString path;
    QString interface;
    Missing missing = Missing::object;
};

const Place login{"org.freedesktop.login1", "/org/freedesktop/login1",
                  "org.freedesktop.login1.Manager", Place::Missing::service};
const Place gnome{"org.gnome.SessionManager", "/org/gnome/SessionManager",
                  "org.gnome.SessionManager", Place::Missing::service};
const Place plasma{"org.kde.Solid.PowerManagement", "/org/kde/Solid/PowerManagement/PolicyAgent",
                   "org.kde.Solid.PowerManagement.PolicyAgent", Place::Missing::anything};

bool isMissing(const QString& error, Place::Missing what) {
    static const QStringList services{"org.freedesktop.DBus.Error.ServiceUnknown",
                                      "org.freedesktop.DBus.Error.NameHasNoOwner"};
    static const QStringList objects{
        "org.freedesktop.DBus.Error.UnknownMethod", "org.freedesktop.DBus.Error.UnknownInterface",
        "org.freedesktop.DBus.Error.UnknownObject", "org.freedesktop.login1.NoSuchSession"};
    return objects.contains(error) || (what == Place::Missing::service && services.contains(error));
}

} // namespace

/// One reading of the account. Its calls end with it.
class BusSessionRegistry::Reading final : public QObject {
public:
    using Told = std::function<void(const std::optional<SessionAccount>&)>;

    Reading(const PowerBus& session, const PowerBus& system, Duration limit, Told told);

private:
    using Answer = std::function<void(const QDBusMessage&)>;

    void ask(const PowerBus& bus, const Place& place, const char* method,
             const QVariantList& arguments, const char* signature, Answer answer);
    void hear(const QDBusMessage& reply, Place::Missing missing, const Answer& answer);
    void askLogin();
    void askSessions();
    void askGnome();
    void askHeld(const QString& path, std::size_t index);
    void giveBack();
    [[nodiscard]] SessionAccount account() const;
    void finish(const std::optional<SessionAccount>& account);

    const PowerBus& session_;
    const PowerBus& system_;
    std::chrono::milliseconds limit_;
    Told told_;
    BusCalls calls_;
    /// Pending answers, and one more until all questions have been asked.
    int open_ = 1;
    std::vector<Inhibitor> loginInhibitors_;
    std::vector<LoginSession> sessions_;
    std::vector<HeldInhibitor> held_;
    std::vector<Inhibitor> plasmaInhibitors_;
};

BusSessionRegistry::Reading::Reading(const PowerBus& session, const PowerBus& system,
                                     Duration limit, Told told)
    : session_(session), system_(system),
      limit_(std::chrono::duration_cast<std::chrono::milliseconds>(limit)), told_(std::move(told)) {
    // All answers together may take that long, not each of them.
    QTimer::singleShot(limit_, this, [this] { finish(std::nullopt); });
    if (system_.problem().empty())
        askLogin();
    if (session_.problem().empty()) {
        askGnome();
        ask(session_, plasma, "ListInhibitions", {}, "a(ss)",
            [this](const QDBusMessage& reply) { plasmaInhibitors_ = plasmaInhibitors(reply); });
    }
    QMetaObject::invokeMethod(this, [this] { giveBack(); }, Qt::QueuedConnection);
}

void BusSessionRegistry::Reading::ask(const PowerBus& bus, const Place& place, const char* method,
                                      const QVariantList& arguments, const char* signature,
                                      Answer answer) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(place.service, place.path, place.interface, method);
    message.setAutoStartService(false);
    message.setArguments(arguments);
    ++open_;
    calls_.send(bus.connection(), message,
                [this, missing = place.missing, answer = std::move(answer)](
                    const QDBusMessage& reply) { hear(reply, missing, answer); },
                {.patience = limit_, .signature = signature});
}

void BusSessionRegistry::Reading::hear(const QDBusMessage& reply, Place::Missing missing,
                                       const Answer& answer) {
    if (reply.type() == QDBusMessage::ReplyMessage) {
        answer(reply);
        giveBack();
    } else if (missing == Place::Missing::anything || isMissing(reply.errorName(), missing)) {
        giveBack();
    } else {
        finish(std::nullopt);
    }
}

void BusSessionRegistry::Reading::askLogin() {
    ask(system_, login, "ListInhibitors", {}, "a(ssssuu)",
        [this](const QDBusMessage& reply) { loginInhibitors_ = loginInhibitors(reply); });
    ask(system_, login, "ListSessions", {}, "a(susso)", [this](const QDBusMessage& reply) {
        sessions_ = loginSessions(reply);
        askSessions();
    });
}

void BusSessionRegistry::Reading::askSessions() {
    for (std::size_t index = 0; index < sessions_.size(); ++index) {
        const Place place{login.service, sessions_[index].path, "org.freedesktop.DBus.Properties"};
        ask(system_, place, "GetAll", {QStringLiteral("org.freedesktop.login1.Session")}, "a{sv}",
            [this, index](const QDBusMessage& reply) {
                sessions_[index].properties = qdbus_cast<QVariantMap>(reply.arguments().value(0));
            });
    }
}

void BusSessionRegistry::Reading::askGnome() {
    ask(session_, gnome, "GetInhibitors", {}, "ao", [this](const QDBusMessage& reply) {
        const auto paths = qdbus_cast<QList<QDBusObjectPath>>(reply.arguments().value(0));
        held_.resize(static_cast<std::size_t>(paths.size()));
        for (std::size_t index = 0; index < held_.size(); ++index)
            askHeld(paths[static_cast<qsizetype>(index)].path(), index);
    });
}

void BusSessionRegistry::Reading::askHeld(const QString& path, std::size_t index) {
    const Place place{gnome.service, path, "org.gnome.SessionManager.Inhibitor"};
    ask(session_, place, "GetAppId", {}, "s", [this, index](const QDBusMessage& reply) {
        held_[index].application = reply.arguments().value(0).toString();
    });
    ask(session_, place, "GetReason", {}, "s", [this, index](const QDBusMessage& reply) {
        held_[index].reason = reply.arguments().value(0).toString();
    });
    ask(session_, place, "GetFlags", {}, "u", [this, index](const QDBusMessage& reply) {
        held_[index].flags = reply.arguments().value(0).toUInt();
    });
}

void BusSessionRegistry::Reading::giveBack() {
    if (--open_ == 0)
        finish(account());
}

SessionAccount BusSessionRegistry::Reading::account() const {
    SessionAccount account;
    account.inhibitors = loginInhibitors_;
    for (const HeldInhibitor& held : held_) {
        if (auto inhibitor = inhibitorOf(held))
            account.inhibitors.push_back(*std::move(inhibitor));
    }
    account.inhibitors.insert(account.inhibitors.end(), plasmaInhibitors_.begin(),
                              plasmaInhibitors_.end());
    countSessions(sessions_, account);
    return account;
}

void BusSessionRegistry::Reading::finish(const std::optional<SessionAccount>& account) {
    calls_.drop();
    if (const auto told = std::exchange(told_, nullptr))
        told(account);
}

struct BusSessionRegistry::Readings final : Handle::Source {
    void cancel(std::uint64_t id) noexcept override { byId.erase(id); }
    std::map<std::uint64_t, std::unique_ptr<Reading>> byId;
    std::uint64_t lastId = 0;
};

BusSessionRegistry::BusSessionRegistry(const PowerBus& session, const PowerBus& system,
                                       Settings settings)
    : session_(session), system_(system), settings_(settings),
      readings_(std::make_shared<Readings>()) {}

BusSessionRegistry::~BusSessionRegistry() = default;

Handle BusSessionRegistry::read(std::function<void(const std::optional<SessionAccount>&)> told) {
    const std::uint64_t id = ++readings_->lastId;
    auto finished = [readings = readings_.get(), id,
                     told = std::move(told)](const std::optional<SessionAccount>& account) {
        // Deleted later, since this is called from within one of its own calls.
        if (auto reading = readings->byId.extract(id))
            reading.mapped().release()->deleteLater();
        told(account);
    };
    readings_->byId.emplace(
        id, std::make_unique<Reading>(session_, system_, settings_.limit, std::move(finished)));
    return {readings_, id};
}

} // namespace velmorquit
