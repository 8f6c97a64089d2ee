#include "Program.h"

#include "Remote/AnswerJson.h"
#include "Remote/Names.h"
#include "Texts/Localized.h"

#include <QDBusPendingCallWatcher>

#include <filesystem>
#include <utility>

namespace velmorquit {

namespace {

/// How long a program that isn't held up may take to answer, in milliseconds.
constexpr int patience = 5000;

/// Which of these the bus reports depends on whether it knows how to start the service.
bool isNobodyThere(const QDBusError& error) {
    return error.type() == QDBusError::ServiceUnknown ||
           error.name() == "org.freedesktop.DBus.Error.NameHasNoOwner";
}

/// The bus tried to start it.
bool hasFailedToStart(const QDBusError& error) {
    return error.name().startsWith("org.freedesktop.DBus.Error.Spawn.");
}

std::string saidBy(const QDBusError& error) {
    return (error.message().isEmpty() ? error.name() : error.message()).toStdString();
}

/// Whether it has the fields that every answer to this verb has.
bool isAnswerTo(remote::Verb verb, const remote::Json& json) {
    if (verb == remote::Verb::status)
        return remote::isStatus(json);
    return json.is_object() &&
           (verb != remote::Verb::quitAll || remote::decodeAnswer(json).asked.has_value());
}

/// File name of the process's executable; empty when unknown.
std::string programOf(uint process) {
    std::error_code unreadable;
    const auto link = "/proc/" + std::to_string(process) + "/exe";
    return std::filesystem::read_symlink(link, unreadable).filename().string();
}

QString toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

Program::Program(bool mayStart, Fail fail) : mayStart_(mayStart), fail_(std::move(fail)) {
    watcher_.setConnection(bus_);
    watcher_.addWatchedService(remote::service);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    // The next owner of the name knows nothing of our commands.
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString& before) {
                if (!before.isEmpty())
                    fail_(localized("Velmor Quit è terminata."), ExitStatus::notRunning);
            });
    // After the bus itself has gone, no loss of a service is reported.
    bus_.connect({}, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                 this, SLOT(loseBus()));
}

void Program::perform(remote::Verb verb, const std::vector<std::string>& arguments, Hear hear) {
    QDBusMessage call = QDBusMessage::createMethodCall(remote::service, remote::path,
                                                       remote::interface, remote::performMethod);
    QStringList words;
    for (const std::string& argument : arguments)
        words << QString::fromStdString(argument);
    call << toQt(remote::commandOf(verb).name) << words;
    send(call, [this, verb, hear = std::move(hear)](const std::string& answer) {
        const Said said{.text = answer, .json = remote::parsed(answer)};
        if (isAnswerTo(verb, said.json))
            hear(said);
        else
            blameAnswerer(localized("la risposta di Velmor Quit non ha senso."));
    });
}

void Program::activate(std::function<void()> done) {
    QVariantMap platformData;
    for (const auto& [variable, key] : {std::pair("XDG_ACTIVATION_TOKEN", "activation-token"),
                                        std::pair("DESKTOP_STARTUP_ID", "desktop-startup-id")}) {
        if (qEnvironmentVariableIsSet(variable))
            platformData.insert(key, qEnvironmentVariable(variable));
    }
    QDBusMessage call = QDBusMessage::createMethodCall(remote::service, remote::path,
                                                       remote::launcherInterface, "Activate");
    call << platformData;
    send(call, [done = std::move(done)](const std::string&) { done(); });
}

void Program::follow(Hear hear) {
    change_ = std::move(hear);
    bus_.connect(remote::service, remote::path, remote::interface, remote::changedSignal, this,
                 SLOT(hearChange(QString)));
}

void Program::hearChange(const QString& change) {
    const std::string text = change.toStdString();
    change_({.text = text, .json = remote::parsed(text)});
}

void Program::send(QDBusMessage call, std::function<void(const std::string& answer)> done) {
    call.setAutoStartService(mayStart_);
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(call, patience), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, pending, done = std::move(done)] {
                pending->deleteLater();
                const QDBusMessage reply = pending->reply();
                if (pending->isError())
                    hearError(pending->error());
                else
                    done(reply.arguments().value(0).toString().toStdString());
            });
}

void Program::hearError(const QDBusError& error) {
    if (isNobodyThere(error))
        fail_(localized("Velmor Quit non è in esecuzione."), ExitStatus::notRunning);
    else if (hasFailedToStart(error))
        fail_(localized("Velmor Quit non si avvia (%@).", saidBy(error)), ExitStatus::notRunning);
    else if (error.type() == QDBusError::NoReply)
        blameAnswerer(localized("Velmor Quit non risponde."));
    else if (!error.name().startsWith(toQt(remote::errorPrefix)))
        blameAnswerer(saidBy(error));
    else
        fail_(saidBy(error), error.name() == remote::errorOf(RemoteAnswer::Status::asking)
                                 ? ExitStatus::asking
                                 : ExitStatus::failure);
}

void Program::blameAnswerer(const std::string& otherwise) {
    QDBusMessage question =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                       "org.freedesktop.DBus", "GetConnectionUnixProcessID");
    question << QString(remote::service);
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(question, patience), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending, otherwise] {
        const uint process = pending->isError() ? 0 : pending->reply().arguments().at(0).toUInt();
        const std::string name = programOf(process);
        if (name.empty() || name.find("velmorquit") != std::string::npos)
            fail_(otherwise, ExitStatus::failure);
        else
            fail_(localized("a rispondere è un altro programma, %@ (processo %lld), che ha preso "
                            "il nome di Velmor Quit.",
                            name, process),
                  ExitStatus::stranger);
    });
}

void Program::loseBus() {
    fail_(localized("il bus di sessione è terminato."), ExitStatus::notRunning);
}

} // namespace velmorquit
