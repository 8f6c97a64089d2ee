#include "Session.h"

#include "Sentences.h"
#include "Texts/Localized.h"
#include "Texts/Shown.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTextStream>
#include <QTime>
#include <QTimer>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <map>
#include <utility>

#include <unistd.h>

namespace velmorquit {

namespace {

const QString service = QStringLiteral("org.velmorquit.VelmorQuit");
const QString path = QStringLiteral("/org/velmorquit/VelmorQuit");
const QString interface = QStringLiteral("org.velmorquit.VelmorQuit1");

/// Milliseconds within which a program that isn't held up answers.
constexpr int patience = 5000;

// Whoever holds the program's name on the bus may have sent anything.
void print(const std::string& text) { std::cout << shownLines(text) << std::flush; }

void printJson(const QString& json) {
    std::cout << shownJson(json.toStdString()) << '\n' << std::flush;
}

QJsonValue shown(const QJsonValue& value);

QJsonObject shown(QJsonObject object) {
    for (auto member = object.begin(); member != object.end(); ++member)
        member.value() = shown(member.value());
    return object;
}

/// With every text in it on one line, so that no name makes lines or columns of its own.
QJsonValue shown(const QJsonValue& value) {
    constexpr std::size_t longest = 4000;
    if (value.isString())
        return QString::fromStdString(shownText(value.toString().toStdString(), longest));
    if (value.isObject())
        return shown(value.toObject());
    if (!value.isArray())
        return value;
    QJsonArray array;
    for (const auto& element : value.toArray())
        array.append(shown(element));
    return array;
}

QJsonObject parsed(const QString& json) {
    return shown(QJsonDocument::fromJson(json.toUtf8()).object());
}

/// What the program has to say, which may be several lines.
std::string saidIn(const QString& json) {
    return QJsonDocument::fromJson(json.toUtf8()).object()["text"].toString().toStdString();
}

/// The bus says the one or the other, depending on whether it knows how to start the service.
bool isNobodyThere(const QDBusError& error) {
    return error.type() == QDBusError::ServiceUnknown ||
           error.name() == "org.freedesktop.DBus.Error.NameHasNoOwner";
}

/// The bus was to start it.
bool hasFailedToStart(const QDBusError& error) {
    return error.name().startsWith("org.freedesktop.DBus.Error.Spawn.");
}

QString saidBy(const QDBusError& error) {
    return error.message().isEmpty() ? error.name() : error.message();
}

/// Whether it has what every answer to that has.
bool isAnswerTo(const QString& verb, const QString& json) {
    const QJsonDocument answer = QJsonDocument::fromJson(json.toUtf8());
    return answer.isObject() && (verb != "status" || answer["phase"].isString()) &&
           (verb != "quitAll" || answer["asked"].isArray());
}

/// File name of what the process executes; empty when that can't be told.
std::string programOf(uint process) {
    std::error_code unreadable;
    const auto link = "/proc/" + std::to_string(process) + "/exe";
    return std::filesystem::read_symlink(link, unreadable).filename().string();
}

/// As the program calls it.
QString actionValue(const QString& then) { return then == "nothing" ? "none" : then; }

qsizetype countToQuit(const QJsonObject& status) {
    qsizetype count = 0;
    for (const auto& application : status["applications"].toArray())
        count += application.toObject()["excluded"].toBool() ? 0 : 1;
    return count;
}

} // namespace

Session::Session(CommandLine line, const Formats& formats, ForegroundJob job)
    : line_(std::move(line)), formats_(formats), job_(std::move(job)), run_(line_, formats_) {
    watcher_.setConnection(bus_);
    watcher_.addWatchedService(service);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    // Whoever has the name after it knows nothing of what was asked.
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString& before) {
                if (!before.isEmpty())
                    fail(localized("Velmor Quit è terminata."), ExitStatus::notRunning);
            });
    // Nobody tells of a service any more when the bus itself has gone.
    bus_.connect({}, "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected",
                 this, SLOT(loseBus()));
}

void Session::start() {
    using Command = CommandLine::Command;
    if (!bus_.isConnected()) {
        fail(localized("nessun bus di sessione (DBUS_SESSION_BUS_ADDRESS)."),
             ExitStatus::notRunning);
        return;
    }
    switch (line_.command) {
    case Command::help:
    case Command::version:
        break;
    case Command::status:
        perform("status", {}, [this](const QString& json) {
            if (line_.wantsJson)
                printJson(json);
            else
                print(statusText(parsed(json), formats_));
            end(ExitStatus::success);
        });
        break;
    case Command::watch:
        bus_.connect(service, path, interface, "Changed", this, SLOT(hear(QString)));
        perform("status", {}, [](const QString&) {});
        break;
    case Command::quitAll:
        askThenQuitAll();
        break;
    case Command::askAgain:
        relay("askAgain", line_.name.isEmpty() ? QStringList() : QStringList{line_.name});
        break;
    case Command::force:
        report("force", {});
        break;
    case Command::leave:
        report("leave", {});
        break;
    case Command::exclude:
        report("exclude", {line_.name});
        break;
    case Command::include:
        report("include", {line_.name});
        break;
    case Command::backup:
        report("backup", {line_.word});
        break;
    case Command::eject:
        bus_.connect(service, path, interface, "Changed", this, SLOT(hear(QString)));
        perform("eject", {}, [](const QString&) {});
        break;
    case Command::cancel:
        relay("cancel", {});
        break;
    case Command::schedule:
        relay("schedule", {line_.moment, line_.time, actionValue(line_.then)});
        break;
    case Command::postpone:
        relay("postpone", {line_.time});
        break;
    case Command::confirm:
        relay("confirm", {});
        break;
    case Command::memory:
        relay("memory", {});
        break;
    case Command::actions:
        perform("actions", {}, [this](const QString& json) {
            if (line_.wantsJson)
                printJson(json);
            else
                print(actionsText(parsed(json)));
            end(ExitStatus::success);
        });
        break;
    case Command::action:
        report("action", line_.arguments);
        break;
    case Command::reopen:
        relay("reopen", {});
        break;
    case Command::forget:
        report("forget", {});
        break;
    case Command::anyway:
        askThenEndAnyway();
        break;
    case Command::show:
        show();
        break;
    }
}

void Session::perform(const QString& verb, const QStringList& arguments,
                      std::function<void(const QString& json)> done) {
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, "Perform");
    call << verb << arguments;
    send(call, [this, verb, done = std::move(done)](const QString& json) {
        if (isAnswerTo(verb, json))
            done(json);
        else
            blameAnswerer(localized("la risposta di Velmor Quit non ha senso."));
    });
}

void Session::send(QDBusMessage call, std::function<void(const QString& answer)> done) {
    // The others are about a program that runs.
    using Command = CommandLine::Command;
    constexpr std::array starting{Command::quitAll, Command::schedule, Command::reopen,
                                  Command::memory, Command::action};
    call.setAutoStartService(std::ranges::find(starting, line_.command) != starting.end());
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(call, patience), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, pending, done = std::move(done)] {
                pending->deleteLater();
                const QDBusMessage reply = pending->reply();
                if (pending->isError())
                    hearError(pending->error());
                else
                    done(reply.arguments().value(0).toString());
            });
}

void Session::hearError(const QDBusError& error) {
    const bool isOwn = error.name().startsWith("org.velmorquit.VelmorQuit.Error.");
    if (isNobodyThere(error))
        fail(localized("Velmor Quit non è in esecuzione."), ExitStatus::notRunning);
    else if (hasFailedToStart(error))
        fail(localized("Velmor Quit non si avvia (%@).", saidBy(error).toStdString()),
             ExitStatus::notRunning);
    else if (error.type() == QDBusError::NoReply)
        blameAnswerer(localized("Velmor Quit non risponde."));
    else if (!isOwn)
        blameAnswerer(saidBy(error).toStdString());
    else
        fail(saidBy(error).toStdString(),
             error.name().endsWith(".Asking") ? ExitStatus::asking : ExitStatus::failure);
}

void Session::blameAnswerer(const std::string& otherwise) {
    QDBusMessage question =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                       "org.freedesktop.DBus", "GetConnectionUnixProcessID");
    question << service;
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(question, patience), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending, otherwise] {
        const uint process = pending->isError() ? 0 : pending->reply().arguments().at(0).toUInt();
        const std::string name = programOf(process);
        if (name.empty() || name.find("velmorquit") != std::string::npos)
            fail(otherwise, ExitStatus::failure);
        else
            fail(localized("a rispondere è un altro programma, %@ (processo %lld), che ha preso il "
                           "nome di Velmor Quit.",
                           name, process),
                 ExitStatus::stranger);
    });
}

void Session::show() {
    QVariantMap platformData;
    for (const auto& [variable, key] : {std::pair("XDG_ACTIVATION_TOKEN", "activation-token"),
                                        std::pair("DESKTOP_STARTUP_ID", "desktop-startup-id")}) {
        if (qEnvironmentVariableIsSet(variable))
            platformData.insert(key, qEnvironmentVariable(variable));
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, "org.freedesktop.Application", "Activate");
    call << platformData;
    // Who has nothing to show answers that as well.
    send(call, [this](const QString&) {
        perform("status", {}, [](const QString&) { end(ExitStatus::success); });
    });
}

void Session::askThenQuitAll() {
    if (line_.then == "nothing" || line_.isConfirmed) {
        quitAll();
        return;
    }
    if (!::isatty(STDIN_FILENO)) {
        fail(localized("senza un terminale serve --yes: non faccio niente."), ExitStatus::usage);
        return;
    }
    perform("status", {}, [this](const QString& json) {
        const QJsonObject status = parsed(json);
        if (const QString limits = status["limits"].toString(); !limits.isEmpty())
            print(limits.toStdString() + '\n');
        if (isAgreed(confirmationQuestion(countToQuit(status), line_.then)))
            quitAll();
        else
            fail(localized("annullato: non chiudo niente."), ExitStatus::failure);
    });
}

bool Session::isAgreed(const std::string& question) {
    print(question + ' ');
    const QString answer = QTextStream(stdin).readLine().trimmed().toLower();
    return QStringList{"s", "si", "sì", "y", "yes"}.contains(answer);
}

// There is no way around the question: what is lost by it is lost for good.
void Session::askThenEndAnyway() {
    perform("status", {}, [this](const QString& json) {
        const QJsonValue ending = parsed(json)["ending"];
        if (ending["list"].isNull() || ending["list"].isUndefined()) {
            fail(localized("non c'è niente su cui passare sopra."), ExitStatus::failure);
            return;
        }
        print(ending["text"].toString().toStdString() + '\n');
        if (!::isatty(STDIN_FILENO)) {
            fail(localized("senza un terminale non posso chiedere conferma: non faccio niente."),
                 ExitStatus::usage);
            return;
        }
        if (isAgreed(ending["question"].toString().toStdString() + " [s/N]"))
            report("anyway", {ending["list"].toString()});
        else
            fail(localized("annullato: non faccio niente."), ExitStatus::failure);
    });
}

void Session::quitAll() {
    bus_.connect(service, path, interface, "Changed", this, SLOT(hear(QString)));
    if (line_.timeout) {
        QTimer::singleShot(*line_.timeout, this, [this] {
            fail(localized("il tempo è scaduto: non aspetto più, e la chiusura va avanti."),
                 ExitStatus::timedOut);
        });
    }
    interruption_.emplace([this] {
        fail(localized("non aspetto più, e la chiusura va avanti: velmorctl leave la ferma, "
                       "velmorctl cancel rinuncia a spegnere, riavviare o uscire."),
             ExitStatus::interrupted);
    });
    if (!job_.isInFront()) {
        beginRun();
        return;
    }
    perform("status", {}, [this](const QString& json) {
        const QJsonObject status = parsed(json);
        // Where a run goes on already this one is refused.
        if (status["phase"] == "idle" || status["phase"] == "done")
            leaveTerminal(status);
        beginRun();
    });
}

void Session::beginRun() {
    perform("quitAll", {actionValue(line_.then)},
            [this](const QString& json) { run_.begin(parsed(json)["asked"].toArray()); });
}

void Session::leaveTerminal(const QJsonObject& status) {
    std::map<pid_t, bool> isExcluded;
    for (const auto& application : status["applications"].toArray()) {
        const QJsonObject open = application.toObject();
        isExcluded[open["process"].toInt()] = open["excluded"].toBool();
    }
    const auto terminal = std::ranges::find_if(
        job_.ancestors(), [&](pid_t ancestor) { return isExcluded.contains(ancestor); });
    if (terminal == job_.ancestors().end() || isExcluded.at(*terminal) || !job_.isInFront())
        return;
    std::cerr << "velmorctl: "
              << localized("anche questo terminale viene chiuso: continuo in secondo piano.")
              << '\n'
              << std::flush;
    job_.leave();
}

void Session::hear(const QString& json) {
    const QJsonObject change = parsed(json);
    if (change["phase"] == "quitting" && job_.isInFront())
        perform("status", {}, [this](const QString& now) { leaveTerminal(parsed(now)); });
    if (line_.command == CommandLine::Command::quitAll) {
        watchRun(change);
        return;
    }
    const std::string text = changeText(change, formats_);
    if (line_.command == CommandLine::Command::eject) {
        if (change["event"] != "disksEjected")
            return;
        print(text + '\n');
        end(change["failed"].toArray().isEmpty() ? ExitStatus::success : ExitStatus::failure);
        return;
    }
    if (line_.wantsJson)
        printJson(json);
    else if (!text.empty())
        print(QTime::currentTime().toString("HH:mm:ss.zzz").toStdString() + "  " + text + '\n');
}

void Session::watchRun(const QJsonObject& change) {
    const bool wasEnding = run_.isEnding();
    if (const auto status = run_.hear(change)) {
        end(*status);
        return;
    }
    if (wasEnding || !run_.isEnding())
        return;
    // What follows may have been given up, or told of, before the result was.
    perform("status", {}, [this](const QString& json) {
        if (const auto status = run_.hearEnding(parsed(json)["ending"]))
            end(*status);
    });
}

void Session::report(const QString& verb, const QStringList& arguments) {
    perform(verb, arguments, [this](const QString& json) {
        QStringList refused;
        for (const auto& name : parsed(json)["refused"].toArray())
            refused << name.toString();
        if (refused.isEmpty())
            end(ExitStatus::success);
        else
            fail(localized("il sistema non permette di forzare: %@.",
                           refused.join(", ").toStdString()),
                 ExitStatus::failure);
    });
}

void Session::relay(const QString& verb, const QStringList& arguments) {
    perform(verb, arguments, [this](const QString& json) {
        if (line_.wantsJson)
            printJson(json);
        else
            print(saidIn(json) + '\n');
        end(ExitStatus::success);
    });
}

void Session::loseBus() {
    fail(localized("il bus di sessione è terminato."), ExitStatus::notRunning);
}

void Session::fail(const std::string& why, ExitStatus status) {
    std::cerr << "velmorctl: " << shownLines(why) << '\n' << std::flush;
    end(status);
}

void Session::end(ExitStatus status) { QCoreApplication::exit(static_cast<int>(status)); }

} // namespace velmorquit
