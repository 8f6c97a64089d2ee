#include "Linux/Remote/BusCommands.h"

#include "Linux/Bus/BusCall.h"
#include "Linux/Proc/ProcessStat.h"
#include "Remote/Names.h"
#include "Remote/StatusJson.h"
#include "Remote/Verbs.h"
#include "Texts/Localized.h"

#include <QDBusMessage>

#include <ctime>
#include <utility>

namespace velmorquit {

namespace {

const QString service = remote::service;
const QString path = remote::path;

QString verb(remote::Verb verb) {
    const std::string_view name = remote::commandOf(verb).name;
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

/// In bytes, with all arguments; the longest are names of applications and tokens.
constexpr std::size_t longestCommand = 64 << 10;

std::size_t sizeOf(const RemoteCommand& command) {
    std::size_t size = command.verb.size();
    for (const std::string& argument : command.arguments)
        size += sizeof(argument) + argument.size();
    return size;
}

bool isAlwaysTaken(const RemoteCommand& command) {
    const remote::Meaning* const meaning = remote::meaningOf(command);
    return meaning && meaning->isAlwaysTaken;
}

Duration clock(clockid_t id) {
    timespec time{};
    ::clock_gettime(id, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

Uptime uptime() { return {clock(CLOCK_MONOTONIC)}; }

/// Processor time of this thread.
Duration processorTime() { return clock(CLOCK_THREAD_CPUTIME_ID); }

} // namespace

BusCommands::BusCommands(SystemLog& log) : log_(log) {
    bus_.connect({}, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                 this, SLOT(loseBus()));
}

// The object is registered before the name, so that it is there for everybody who sees the name.
BusCommands::Claim BusCommands::claimName() {
    if (!bus_.isConnected())
        return Claim::noBus;
    bus_.registerObject(path, this,
                        QDBusConnection::ExportScriptableSlots |
                            QDBusConnection::ExportScriptableSignals |
                            QDBusConnection::ExportAdaptors);
    return bus_.registerService(service) ? Claim::ours : Claim::taken;
}

BusCommands::Holder BusCommands::holder() {
    constexpr int ofBus = 1000;
    constexpr int ofHolder = 1500;
    const QDBusMessage known =
        bus_.call(busQuestion("GetConnectionUnixProcessID", {service}), QDBus::Block, ofBus);
    Holder holder{.process = static_cast<ProcessId>(known.arguments().value(0).toUInt())};
    if (known.type() == QDBusMessage::ReplyMessage)
        holder.name = executableName(holder.process);
    else
        holder.process = 0;
    holder.isThisProgram = holder.name.find("velmorquit") != std::string::npos;
    if (holder.isThisProgram)
        return holder;
    // A sandboxed instance speaks through a broker. Any other program can imitate the answer of
    // this one.
    if (!holder.name.empty() && holder.name != "xdg-dbus-proxy")
        return holder;
    QDBusMessage status =
        QDBusMessage::createMethodCall(service, path, remote::interface, remote::performMethod);
    status.setAutoStartService(false);
    status << verb(remote::Verb::status) << QStringList();
    const QDBusMessage answer = bus_.call(status, QDBus::Block, ofHolder);
    const std::string json = answer.arguments().value(0).toString().toStdString();
    holder.isThisProgram =
        answer.type() == QDBusMessage::ReplyMessage && remote::isStatus(remote::parsed(json));
    return holder;
}

void BusCommands::claimLater() {
    waiting_.setConnection(bus_);
    waiting_.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    waiting_.addWatchedService(service);
    const auto claim = [this] {
        if (claimName() != Claim::ours)
            return;
        waiting_.setWatchedServices({});
        log_.write("Velmor Quit: il mio nome sul bus è libero, velmorctl può raggiungermi");
    };
    connect(&waiting_, &QDBusServiceWatcher::serviceUnregistered, this, claim);
    // The owner may have gone during the check, without a further notification.
    claim();
}

bool BusCommands::showOther(const QVariantMap& platformData, std::chrono::milliseconds limit) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, remote::launcherInterface, "Activate");
    call.setAutoStartService(false);
    call << platformData;
    const QDBusMessage reply = bus_.call(call, QDBus::Block, static_cast<int>(limit.count()));
    return reply.type() == QDBusMessage::ReplyMessage;
}

bool BusCommands::serve(Handler handler) {
    handler_ = std::move(handler);
    return bus_.isConnected();
}

void BusCommands::announce(std::string_view change) {
    Q_EMIT Changed(QString::fromUtf8(change.data(), static_cast<qsizetype>(change.size())));
}

void BusCommands::take(RemoteCommand command, const QString& connection, const Answered& answered) {
    const auto refuse = [&](const std::string& why) {
        answered({RemoteAnswer::Status::refused, why});
    };
    if (!handler_.answer)
        return refuse(localized("Velmor Quit non è pronta: riprova tra un attimo."));
    if (sizeOf(command) > longestCommand)
        return refuse(localized("Il comando è troppo lungo."));
    if (!isAlwaysTaken(command) && !budget_.allows(connection.toStdString(), uptime()))
        return refuse(localized("Velmor Quit riceve troppi comandi: riprova fra poco."));
    if (command.verb == remote::commandOf(remote::Verb::cancel).name)
        ++cancellations_;
    if (!handler_.mattersWhose(command))
        return perform(command, connection, answered);
    callers_.find(connection, [this, command = std::move(command), connection, answered,
                               asOf = cancellations_](const RemoteCaller& caller) mutable {
        if (asOf != cancellations_)
            return answered({RemoteAnswer::Status::refused,
                             localized("Nel frattempo è stato chiesto di annullare.")});
        command.caller = caller;
        perform(command, connection, answered);
    });
}

void BusCommands::perform(const RemoteCommand& command, const QString& connection,
                          const Answered& answered) {
    const Duration before = processorTime();
    answered(handler_.answer(command));
    // These are free, or else they could be used up as well.
    if (!isAlwaysTaken(command))
        budget_.charge(connection.toStdString(), uptime(), processorTime() - before);
}

QString BusCommands::Perform(const QString& verb, const QStringList& arguments) {
    RemoteCommand command{verb.toStdString(), {}};
    for (const QString& argument : arguments)
        command.arguments.push_back(argument.toStdString());
    const QDBusMessage call = message();
    call.setDelayedReply(true);
    take(std::move(command), call.service(), [bus = bus_, call](const RemoteAnswer& given) {
        if (!call.isReplyRequired())
            return;
        const QString text = QString::fromStdString(given.text);
        const char* error = remote::errorOf(given.status);
        bus.send(error ? call.createErrorReply(error, text) : call.createReply(text));
    });
    return {};
}

// The bus is a convenience: the icon does the main job without it, and a running run must not be
// lost with it. When the whole session ends, the loss of the display tells.
void BusCommands::loseBus() {
    log_.write("Velmor Quit: il bus di sessione è terminato, velmorctl non può più raggiungermi");
}

} // namespace velmorquit
