#include "Sentences.h"

#include "Platform/Dates.h"
#include "Table.h"
#include "Texts/Localized.h"

#include <QJsonArray>
#include <QStringList>

#include <cmath>

namespace velmorquit {

namespace {

std::string nameOf(const QJsonValue& application) {
    return application["name"].toString().toStdString();
}

/// An application that is still open, with why it is.
std::string stubbornName(const QJsonValue& application) {
    const std::string name = nameOf(application);
    const QString reason = application["reason"].toString();
    if (reason == "asking")
        return localized("%@ (aspetta una tua risposta)", name);
    if (reason == "windowless")
        return localized("%@ (senza finestre)", name);
    if (reason == "cannotBeAsked")
        return localized("%@ (non si può chiederle di chiudersi)", name);
    if (reason == "busyTerminal")
        return localized("%@ (ha un comando in corso)", name);
    if (reason == "notResponding")
        return localized("%@ (non risponde)", name);
    if (reason == "inTray")
        return localized("%@ (nell'area di notifica)", name);
    return name;
}

std::string stubbornRemark(const QJsonValue& application) {
    const QString reason = application["reason"].toString();
    if (reason == "asking")
        return localized("ancora aperta: aspetta una tua risposta");
    if (reason == "windowless")
        return localized("ancora in esecuzione, senza finestre");
    if (reason == "cannotBeAsked")
        return localized("ancora aperta: non si può chiederle di chiudersi");
    if (reason == "busyTerminal")
        return localized("ancora aperta: ha un comando in corso");
    if (reason == "notResponding")
        return localized("ancora aperta: non risponde");
    if (reason == "inTray")
        return localized("ancora in esecuzione, nell'area di notifica");
    return localized("ancora aperta");
}

std::string stubbornNames(const QJsonArray& applications) {
    std::string names;
    for (const auto& application : applications)
        names += (names.empty() ? "" : ", ") + stubbornName(application);
    return names;
}

std::string doneText(const QJsonObject& state, const Formats& formats) {
    const int closed = state["closed"].toInt();
    if (closed == 0)
        return localized("Finito: nessuna app chiusa");
    const auto freed = static_cast<std::uint64_t>(state["freed"].toInteger());
    return closed == 1
               ? localized("Finito: 1 app chiusa, %@ liberati", formats.bytes(freed))
               : localized("Finito: %lld app chiuse, %@ liberati", closed, formats.bytes(freed));
}

std::string shortTime(const QJsonValue& seconds, const Formats& formats) {
    const std::chrono::seconds since(seconds.toInteger());
    return formats.shortTime(dateAt(std::chrono::sys_seconds(since)));
}

std::string backupFailedText(const QJsonObject& state, const Formats& formats) {
    const std::string reason = state["reason"].toString().toStdString();
    const auto until = state["continuesAt"];
    if (until.isNull())
        return localized("Backup non riuscito: %@ (decidi tu: velmorctl backup continue o stop)",
                         reason);
    return localized("Backup non riuscito: %@ (vado avanti alle %@, o decidi tu: velmorctl backup "
                     "continue o stop)",
                     reason, shortTime(until, formats));
}

std::string phaseText(const QJsonObject& state, const Formats& formats) {
    const QString phase = state["phase"].toString();
    if (phase == "quitting") {
        const int total = state["total"].toInt();
        return total == 1 ? localized("Chiedo a 1 app di chiudersi")
                          : localized("Chiedo a %lld app di chiudersi", total);
    }
    if (phase == "waiting")
        return localized("Aspetto una risposta");
    if (phase == "backingUp") {
        const double fraction = state["fraction"].toDouble(-1);
        return fraction < 0 ? localized("Backup in corso")
                            : localized("Backup in corso: %lld%%", std::lround(100 * fraction));
    }
    if (phase == "backupFailed")
        return backupFailedText(state, formats);
    if (phase == "ejecting")
        return localized("Espello i dischi");
    if (phase == "done") {
        const std::string note = state["note"].toString().toStdString();
        const std::string text = doneText(state, formats);
        return note.empty() ? text : text + " · " + note;
    }
    return localized("Pronta");
}

/// The element that means the same process, else an undefined value.
QJsonValue find(const QJsonArray& applications, const QJsonObject& wanted) {
    for (const auto& application : applications) {
        if (application.toObject()["process"] == wanted["process"])
            return application;
    }
    return QJsonValue::Undefined;
}

Table::Row rowFor(const QJsonObject& application, const QJsonArray& stubborn,
                  const Formats& formats) {
    std::string remark;
    if (const QJsonValue open = find(stubborn, application); !open.isUndefined())
        remark = stubbornRemark(open);
    else if (application["excluded"].toBool())
        remark = localized("esclusa");
    const QString id = application["id"].toString();
    const auto memory = static_cast<std::uint64_t>(application["memory"].toInteger());
    return {nameOf(application), formats.bytes(memory),
            std::to_string(application["process"].toInteger()),
            id.isEmpty() ? "—" : id.toStdString(), remark};
}

std::string eventText(const QJsonObject& change) {
    const QString event = change["event"].toString();
    if (event == "backupFinished" && change["success"].toBool())
        return localized("Backup completato");
    if (event != "disksEjected")
        return {};
    QStringList failed;
    for (const auto& name : change["failed"].toArray())
        failed << name.toString();
    const int count = change["count"].toInt();
    if (failed.isEmpty())
        return count == 1 ? localized("1 disco espulso") : localized("%lld dischi espulsi", count);
    return localized("Ancora collegati: %@", failed.join(", ").toStdString());
}

std::string scheduleTitle(const QString& then) {
    if (then == "shutDown")
        return localized("Spegni");
    if (then == "restart")
        return localized("Riavvia");
    return then == "logOut" ? localized("Esci utente") : localized("Chiudi tutto");
}

/// What is set for later, without a full stop; empty without a schedule.
std::string scheduleText(const QJsonValue& schedule, const Formats& formats) {
    if (schedule.isNull())
        return {};
    const std::string time = shortTime(schedule["date"], formats);
    const std::string title = scheduleTitle(schedule["then"].toString());
    if (schedule["awaiting"].toBool())
        return localized("La chiusura delle %@ (%@) aspetta una conferma: velmorctl confirm, "
                         "postpone o cancel",
                         time, title);
    return localized("Chiusura programmata alle %@ (%@)", time, title);
}

/// What can be brought back, as a line; empty while a run is in progress or when there is nothing.
std::string reopenableText(const QJsonObject& status) {
    const QString phase = status["phase"].toString();
    std::string names;
    for (const auto& application : status["reopenable"].toArray())
        names += (names.empty() ? "" : ", ") + nameOf(application);
    if (names.empty() || (phase != "idle" && phase != "done"))
        return {};
    return localized("Da riaprire: %@", names) + '\n';
}

/// In the place of the table. An earlier program doesn't say how much it sees.
std::string emptyText(const QString& sight) {
    if (sight == "noWindowList")
        return localized("Non vedo che cosa è aperto: nessun gestore di finestre me lo dice.");
    if (sight == "incomplete")
        return localized("Non vedo tutto: ci sono troppe finestre o troppi file aperti.");
    if (sight == "anotherDisplay")
        return localized("Non vedo che cosa è aperto: di questa sessione vedo solo una parte delle "
                         "finestre.");
    return localized("Nessuna app aperta");
}

} // namespace

std::string statusText(const QJsonObject& status, const Formats& formats) {
    const QJsonArray stubborn = status["stubborn"].toArray();
    QJsonArray applications = status["applications"].toArray();
    // One that lives on without windows is no open application any more, and yet it is waited for.
    for (const auto& application : stubborn) {
        if (find(applications, application.toObject()).isUndefined())
            applications.append(application);
    }
    std::string phase = phaseText(status, formats) + '\n';
    if (const std::string schedule = scheduleText(status["schedule"], formats); !schedule.empty())
        phase += schedule + '\n';
    for (const QJsonValue& said : {status["ending"]["text"], status["limits"]}) {
        if (const QString text = said.toString(); !text.isEmpty())
            phase += text.toStdString() + '\n';
    }
    if (applications.isEmpty())
        return phase + emptyText(status["sight"].toString()) + '\n' + reopenableText(status);
    Table table({Table::Align::left, Table::Align::right, Table::Align::right, Table::Align::left,
                 Table::Align::left});
    for (const auto& application : applications)
        table.add(rowFor(application.toObject(), stubborn, formats));
    const auto count = applications.size();
    return phase +
           (count == 1 ? localized("1 app aperta:") : localized("%lld app aperte:", count)) + '\n' +
           table.text() + reopenableText(status);
}

std::string actionsText(const QJsonObject& answer) {
    Table table({Table::Align::left, Table::Align::left, Table::Align::left});
    for (const auto& action : answer["actions"].toArray()) {
        const QJsonObject described = action.toObject();
        const QStringList parameters = described["parameters"].toObject().keys();
        table.add({described["name"].toString().toStdString(),
                   described["title"].toString().toStdString(),
                   parameters.join(", ").toStdString()});
    }
    return table.text();
}

std::string changeText(const QJsonObject& change, const Formats& formats) {
    const QString kind = change["change"].toString();
    const std::string name = nameOf(change["application"]);
    const std::string key = change["key"].toString().toStdString();
    if (kind == "phase")
        return phaseText(change, formats);
    if (kind == "event")
        return eventText(change);
    if (kind == "schedule") {
        const std::string text = scheduleText(change["schedule"], formats);
        return text.empty() ? localized("Nessuna chiusura programmata") : text;
    }
    if (kind == "attention") {
        const int seconds = change["seconds"].toInt();
        return seconds == 1 ? localized("Chiusura programmata tra 1 secondo")
                            : localized("Chiusura programmata tra %lld secondi", seconds);
    }
    if (kind == "ending")
        return change["ending"]["text"].toString().toStdString();
    if (kind == "scheduleNote")
        return change["note"].toString().toStdString();
    if (kind == "stubborn") {
        const QJsonArray applications = change["applications"].toArray();
        if (applications.isEmpty())
            return {};
        return applications.size() == 1
                   ? localized("Ancora aperta: %@", stubbornNames(applications))
                   : localized("Ancora aperte: %@", stubbornNames(applications));
    }
    if (kind == "opened")
        return localized("Aperta: %@", name);
    if (kind == "closed")
        return localized("Chiusa: %@", name);
    if (kind == "windowless")
        return localized("Senza finestre: %@", name);
    if (kind == "excluded")
        return localized("Esclusa: %@", key);
    if (kind == "included")
        return localized("Non più esclusa: %@", key);
    return {};
}

std::string confirmationQuestion(qsizetype count, const QString& then) {
    if (then == "shutDown") {
        return count == 1 ? localized("Chiudo 1 app e poi spengo? [s/N]")
                          : localized("Chiudo %lld app e poi spengo? [s/N]", count);
    }
    if (then == "restart") {
        return count == 1 ? localized("Chiudo 1 app e poi riavvio? [s/N]")
                          : localized("Chiudo %lld app e poi riavvio? [s/N]", count);
    }
    return count == 1 ? localized("Chiudo 1 app e poi chiudo la sessione? [s/N]")
                      : localized("Chiudo %lld app e poi chiudo la sessione? [s/N]", count);
}

} // namespace velmorquit
